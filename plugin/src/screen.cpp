#include "screen.hpp"

#include "picture.hpp"

namespace morvesk::screen {

using python::makeList;
using python::makeTuple;
using python::NONE;
using python::Ref;

namespace {

constexpr const char* TITLE = "Download services lists";
constexpr const char* TITLE_WIDGET = "title";
constexpr const char* LIST_WIDGET = "downloadmenu";

// Before the other key maps of the screen, as the host's own download screens have it.
constexpr int KEY_PRIORITY = -2;

/// A skin may lack the title: then the screen goes without.
void makeTitle(const Module& module, const Object& self) {
    try {
        self.setItem(TITLE_WIDGET, module.global(Name::StaticText)({self.attr(Name::title)}));
    } catch (...) {
        python::print("self[\"title\"] was not found in skin");
    }
}

Ref makeKeys(const Module& module, const Object& self) {
    const auto actions = module.object(python::checked(PyDict_New()));
    actions.setItem("ok", self.attr(Name::keyOk));
    actions.setItem("cancel", self.attr(Name::keyCancel));
    actions.setItem("red", self.attr(Name::keyCancel));
    actions.setItem("green", self.attr(Name::keyOk));
    return actions.ref();
}

}  // namespace

Object construct(const Module& module, const Object& self, const Object& session, const Object& pluginPath) {
    module.global(Name::Screen).attr(Name::construct)({self, session});
    self.setAttr(Name::skinName, makeList({"Morvesk", "Ruskell", "Tollvane"}));
    self.setAttr(Name::skin_path, pluginPath);
    self.setAttr(Name::session, session);
    self.setAttr(Name::tmp_path, "/tmp/settings");
    self.setAttr(Name::mandatory_files, makeTuple({"bouquets.tv", "bouquets.radio", "lamedb"}));
    self.setAttr(Name::title, module.translate(TITLE));
    makeTitle(module, self);
    self.setAttr(Name::list, makeList());
    self.attr(Name::list)
        .append()(makeNotice(module, "Please wait ...", " downloading available service list information"));
    self.setItem(LIST_WIDGET, module.global(Name::List)({self.attr(Name::list)}));
    self.setItem("key_red", module.global(Name::StaticText)({module.translate("Exit")}));
    self.setItem("key_green", module.global(Name::StaticText)({module.translate("Ok")}));
    self.setItem("shortcuts",
                 module.global(Name::ActionMap)({makeList({"SetupActions", "ColorActions", "DirectionActions"}),
                                                 makeKeys(module, self), KEY_PRIORITY}));
    self.setAttr(Name::Console, module.global(Name::ComConsole)());
    self.attr(Name::onLayoutFinish).append()(self.attr(Name::init_vars));
    return module.object(NONE);
}

Object initVars(const Module& module, const Object& self) {
    self.setAttr(Name::messagebox_title, module.translate(TITLE));
    self.call(Name::getServiceLists);
    return module.object(NONE);
}

Object keyCancel(const Module& module, const Object& self) {
    if (!self.attr(Name::Console).isNone() && self.attr(Name::Console).attr(Name::appContainers).length() != 0) {
        // A snapshot: the host's kill() may take the name out of the dict.
        const auto running = self.attr(Name::Console).attr(Name::appContainers).snapshot();
        for (const auto& name : python::Elements(running)) {
            self.attr(Name::Console).attr(Name::kill)({name});
        }
    }
    self.attr(Name::close)({NONE});
    return module.object(NONE);
}

void showList(const Object& self) {
    self.item(LIST_WIDGET).attr(Name::setList)({self.attr(Name::list)});
}

Ref makeNotice(const Module& module, const char* headline, const char* text) {
    const Picture picture(module, "ntptime.png");
    return makeTuple({NONE, module.translate(headline), module.translate(text), picture.load(), NONE});
}

void showMessage(const Module& module, const Object& self, const char* text, Name type) {
    const auto box = self.attr(Name::session)
                         .attr(Name::open)({module.global(Name::MessageBox), module.translate(text),
                                            module.global(Name::MessageBox).attr(type)});
    box.attr(Name::setTitle)({self.attr(Name::messagebox_title)});
}

}  // namespace morvesk::screen
