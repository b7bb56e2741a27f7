#include "installation.hpp"

#include "catalogue.hpp"
#include "python/strings.hpp"
#include "screen.hpp"

namespace morvesk::installation {

using python::Error;
using python::makeList;
using python::makeText;
using python::makeTuple;
using python::NONE;
using python::Ref;

namespace {

void makeDownloadFolder(const Module& module, const Object& self) {
    if (module.global(Name::os).attr(Name::path).attr(Name::exists)({self.attr(Name::tmp_path)}).truth()) return;
    try {
        module.global(Name::os).attr(Name::makedirs)({self.attr(Name::tmp_path)});
    } catch (const Error& error) {
        // Whether the folder is usable is asked next, in any case.
        if (!error.matches(Ref::borrow(PyExc_OSError))) throw;
    }
}

void showErrorRow(const Module& module, const Object& self, catalogue::Status status) {
    self.setAttr(Name::list, makeList({catalogue::makeErrorRow(module, status)}));
    screen::showList(self);
}

void showErrorAndCatalogue(const Module& module, const Object& self, const char* text) {
    screen::showMessage(module, self, text, Name::TYPE_ERROR);
    self.call(Name::init_vars);
}

bool isComplete(const Module& module, const Object& self) {
    for (const auto& name : python::Elements(self.attr(Name::mandatory_files))) {
        const auto exists = module.global(Name::os).attr(Name::path).attr(Name::exists);
        if (!exists({self.attr(Name::tmp_path).plus("/").plus(name)}).truth()) return false;
    }
    return true;
}

void askHowToInstall(const Module& module, const Object& self) {
    const auto choices = makeList({makeTuple({module.translate("append to exisiting service lists"), true}),
                                   makeTuple({module.translate("overwrite exisiting service lists"), false})});
    const auto open = self.attr(Name::session).attr(Name::openWithCallback);
    const auto callback = self.attr(Name::installNewFavourites);
    const auto choiceBox = module.global(Name::ChoiceBox);
    const auto title = module.translate("How to install new service lists...");
    open({callback, choiceBox}, {Name::title, title, Name::list, choices});
}

/// Gives the open channel list what it showed before, so that it is built again from the new services.
void refreshChannelList(const Module& module) {
    const auto servicelist = module.global(Name::InfoBar).attr(Name::instance).attr(Name::servicelist);
    const auto root = servicelist.call(Name::getRoot);
    const auto selected = servicelist.call(Name::getCurrentSelection);
    servicelist.attr(Name::setRoot)({root});
    servicelist.attr(Name::setCurrentSelection)({selected});
}

}  // namespace

Object keyOk(const Module& module, const Object& self) {
    const auto row = self.item("downloadmenu").call(Name::getCurrent);
    if (!row.truth() || !row.item(0).truth()) return module.object(NONE);

    makeDownloadFolder(module, self);
    if (!module.global(Name::fileExists)({self.attr(Name::tmp_path)}, {Name::mode, "w"}).truth()) {
        screen::showMessage(module, self, "Sorry, creating download folder failed", Name::TYPE_ERROR);
        return module.object(NONE);
    }

    const auto status = module.global(Name::download_settings)({row.item(0), self.attr(Name::tmp_path)});
    if (status.equals(catalogue::TRANSFERRED)) {
        self.call(Name::download_finished);
    } else if (status.equals(catalogue::HTTP_ERROR)) {
        showErrorRow(module, self, catalogue::HTTP_ERROR);
    } else if (status.equals(catalogue::URL_ERROR)) {
        showErrorRow(module, self, catalogue::URL_ERROR);
    }
    return module.object(NONE);
}

Object untarFinished(const Module& module, const Object& self, const Object& /*result*/, const Object& status,
                     const Object& /*extraArguments*/) {
    if (!status.equals(0)) {
        showErrorAndCatalogue(module, self, "Sorry, extracting of services list failed\nPlease try again.");
    } else if (!isComplete(module, self)) {
        showErrorAndCatalogue(module, self,
                              "Sorry, there are some mandatory files missing\nPlease try antoher services list.");
    } else {
        askHowToInstall(module, self);
    }
    return module.object(NONE);
}

void overwrite(const Object& self) {
    auto command = Object(python::Value("rm -rf /etc/enigma2/lamedb ; "
                                        "rm -rf /etc/enigma2/*.tv ; "
                                        "rm -rf /etc/enigma2/*.radio ; ")
                              .ref(),
                          self.names());
    for (const char* step : {"cp %s/lamedb /etc/enigma2/ ; ", "cp -r %s/*.tv /etc/enigma2/ ; ",
                             "cp -r %s/*.radio /etc/enigma2/ ;", "rm -rf %s"}) {
        command = command.plus(makeText(step, {self.attr(Name::tmp_path)}));
    }
    self.attr(Name::Console).attr(Name::ePopen)({command, self.attr(Name::copy_finished)});
}

Object copyFinished(const Module& module, const Object& self, const Object& /*result*/, const Object& /*status*/,
                    const Object& /*extraArguments*/) {
    if (self.call(Name::reload_settings).truth()) {
        screen::showMessage(module, self, "Loading new services list finished succesfully.", Name::TYPE_INFO);
        self.call(Name::close);
    } else {
        showErrorAndCatalogue(module, self, "Loading the new services list failed.\nPlease try again");
    }
    return module.object(NONE);
}

Object reloadSettings(const Module& module, const Object& /*self*/) {
    module.global(Name::nimmanager).call(Name::readTransponders);
    module.global(Name::eDVBDB).call(Name::getInstance).call(Name::reloadServicelist);
    module.global(Name::eDVBDB).call(Name::getInstance).call(Name::reloadBouquets);
    if (!module.global(Name::InfoBar).attr(Name::instance).isNone()) refreshChannelList(module);
    return module.object(true);
}

}  // namespace morvesk::installation
