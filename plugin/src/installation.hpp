// The installation of a chosen list: download and extraction, the question how to install it, the overwrite, the
// reload.
#pragma once

#include "python/module.hpp"

namespace morvesk::installation {

using python::Module;
using python::Object;

/// `keyOk(self)`: downloads the archive of the selected row and starts its extraction.
///
/// A folder that cannot be made is told in a box, a failed transfer in a row of the list; raises what the transfer
/// raises.
Object keyOk(const Module& module, const Object& self);

/// `untar_finished(self, result, retval, extra_args=None)`: after the extraction, asks how to install the list.
///
/// An extraction that failed and an archive without a mandatory file are told in a box, and the catalogue comes back.
Object untarFinished(const Module& module, const Object& self, const Object& result, const Object& status,
                     const Object& extraArguments);

/// Starts the commands that put the list in the place of the receiver's own; copy_finished follows.
void overwrite(const Object& self);

/// `copy_finished(self, result, retval, extra_args=None)`: after the installation, makes the receiver load the new
/// list.
///
/// How the commands ended is not looked at: what counts for the owner is whether the receiver could load what is there.
Object copyFinished(const Module& module, const Object& self, const Object& result, const Object& status,
                    const Object& extraArguments);

/// `reload_settings(self)`: reloads transponders, services, bouquets and the open channel list. Returns True.
Object reloadSettings(const Module& module, const Object& self);

}  // namespace morvesk::installation
