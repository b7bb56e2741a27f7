// The service-list screen: how it is built, what it does after its layout, and how the owner leaves it.
#pragma once

#include "python/module.hpp"

namespace morvesk::screen {

using python::Module;
using python::Object;

/// `__init__(self, session, plugin_path)`: the attributes, the widgets, the keys and the layout hook.
///
/// Raises what the host raises, but for the "title" widget: a screen without it opens all the same.
Object construct(const Module& module, const Object& self, const Object& session, const Object& pluginPath);

/// `init_vars(self)`: the layout hook, and the way back to the catalogue after a message.
Object initVars(const Module& module, const Object& self);

/// `keyCancel(self)`: kills the commands that still run and closes the screen.
///
/// Raises what the console's `kill` raises; the screen then stays open.
Object keyCancel(const Module& module, const Object& self);

/// Shows `self.list` in the catalogue widget.
void showList(const Object& self);

/// A row that tells something instead of offering a list: both texts translated, nothing to download.
python::Ref makeNotice(const Module& module, const char* headline, const char* text);

/// Opens a message box of the given type (a name of `MessageBox`) under the screen's box title.
void showMessage(const Module& module, const Object& self, const char* text, Name type);

}  // namespace morvesk::screen
