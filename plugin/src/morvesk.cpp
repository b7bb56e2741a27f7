// The module's surface: what loading it does, in the order in which it happens.

#include <array>
#include <string>

#include "catalogue.hpp"
#include "favourites.hpp"
#include "installation.hpp"
#include "python/class.hpp"
#include "python/function.hpp"
#include "python/import.hpp"
#include "python/strings.hpp"
#include "screen.hpp"

namespace morvesk {

namespace {

using python::define;
using python::Import;
using python::importEverythingFrom;
using python::importFrom;
using python::importFromAs;
using python::importModule;
using python::Module;
using python::Ref;
using python::Where;

constexpr const char* MODULE_NAME = "Morvesk";
constexpr const char* ENTRY_NAME = "initMorvesk";
constexpr const char* SCREEN_NAME = "Morvesk";

constexpr Import IMPORTS[] = {
    importFrom("Components.Label", "Label"),
    importFrom("Components.ActionMap", "ActionMap"),
    importFrom("Components.GUIComponent", "GUIComponent"),
    importFrom("Components.Sources.StaticText", "StaticText"),
    importFrom("Components.Pixmap", "Pixmap"),
    importFrom("Components.MenuList", "MenuList"),
    importFromAs("Components.Console", "Console", "ComConsole"),
    importFrom("Components.Sources.List", "List"),
    importFrom("Screens.Screen", "Screen"),
    importFrom("Screens.MessageBox", "MessageBox"),
    importFrom("Screens.ChoiceBox", "ChoiceBox"),
    importEverythingFrom("Tools.Directories"),
    importFrom("Tools.LoadPixmap", "LoadPixmap"),
    importFrom("skin", "loadSkin"),
    importModule("urllib2"),
    importModule("datetime"),
    importModule("time"),
    importModule("shutil"),
    importModule("os"),
    importFrom("enigma", {"eServiceReference", "eServiceCenter", "eDVBDB"}),
    importFrom("ServiceReference", "ServiceReference"),
    importFrom("Screens.InfoBar", "InfoBar"),
    importFrom("Components.NimManager", "nimmanager"),
};

constexpr std::array FUNCTIONS = {
    define<catalogue::baseUrl>("base_url"),
    define<catalogue::infoUrl>("info_url"),
    define<catalogue::downloadSettings>("download_settings", "f_name, tmp_path"),
    define<catalogue::parseDownloadFile>("parse_download_file"),
};

constexpr std::size_t OPTIONAL_LAST = 1;

constexpr std::array METHODS = {
    define<screen::construct>("__init__", "self, session, plugin_path"),
    define<screen::initVars>("init_vars", "self"),
    define<catalogue::getServiceLists>("getServiceLists", "self"),
    define<installation::keyOk>("keyOk", "self"),
    define<catalogue::downloadFinished>("download_finished", "self"),
    define<installation::untarFinished>("untar_finished", "self, result, retval, extra_args", OPTIONAL_LAST),
    define<favourites::installNewFavourites>("installNewFavourites", "self, append", OPTIONAL_LAST),
    define<installation::copyFinished>("copy_finished", "self, result, retval, extra_args", OPTIONAL_LAST),
    define<favourites::mergeNewFavourites>("mergeNewFavourites", "self"),
    define<favourites::writeBouquetFiles>("writeBouquetFiles", "self, root_type, fav_list"),
    define<installation::reloadSettings>("reload_settings", "self"),
    define<screen::keyCancel>("keyCancel", "self"),
};

/// Only ever a warning: an image with another interpreter may still get along with the module, and its owner must not
/// lose it because somebody has turned warnings into errors.
void warnOfOtherVersion() {
    const std::string builtFor = std::to_string(PY_MAJOR_VERSION) + "." + std::to_string(PY_MINOR_VERSION);
    const std::string_view running = Py_GetVersion();
    const auto minorVersion = running.find('.') + 1;
    const std::string runningVersion(running.substr(0, running.find_first_not_of("0123456789", minorVersion)));
    if (runningVersion == builtFor) return;
    const auto warning = python::makeText("compiletime version %s of module '%s' does not match runtime version %s",
                                          {builtFor, MODULE_NAME, runningVersion});
    if (PyErr_WarnEx(nullptr, PyString_AS_STRING(warning.get()), 1) < 0) PyErr_Clear();
}

/// Runs the imports and defines the functions and the class, in a namespace that is new or, at a reload, in use.
void execute(const Ref& moduleObject) {
    PyObject* const names = PyModule_GetDict(moduleObject.get());
    python::checked(PyDict_SetItemString(names, "__builtins__", PyEval_GetBuiltins()));
    const auto state = Module::make(moduleObject.get());
    const Module module(state.get());

    for (const auto& statement : IMPORTS) {
        statement.run(module, Where::here().file);
    }
    for (auto& definition : python::definitions<FUNCTIONS>()) {
        const auto function = python::makeFunction(module, definition);
        python::checked(PyDict_SetItemString(names, definition.ml_name, function.get()));
    }
    const auto body = python::checked(PyDict_New());
    python::checked(PyDict_SetItemString(body.get(), "__module__", module.global(Name::moduleName).get()));
    const auto base = module.global(Name::Screen);
    for (auto& definition : python::definitions<METHODS>()) {
        const auto method = python::makeMethod(python::makeFunction(module, definition), base);
        python::checked(PyDict_SetItemString(body.get(), definition.ml_name, method.get()));
    }
    const auto screen = python::makeClass(SCREEN_NAME, base, body);
    python::checked(PyDict_SetItemString(names, SCREEN_NAME, screen.get()));
}

/// Takes a module that could not be loaded out of the interpreter's table, so that the next import starts from nothing.
/// Looks for it by itself and not by its name: there may be no memory left for a string.
void forget(const Ref& module) noexcept {
    PyObject* const modules = PyImport_GetModuleDict();
    Py_ssize_t position = 0;
    PyObject* name = nullptr;
    PyObject* loaded = nullptr;
    while (PyDict_Next(modules, &position, &name, &loaded) != 0) {
        if (loaded != module.get()) continue;
        if (PyDict_DelItem(modules, name) < 0) PyErr_Clear();
        break;
    }
    // Its functions refer to it, and it to them.
    PyDict_Clear(PyModule_GetDict(module.get()));
}

void load() noexcept {
    Ref module;
    bool isReload = false;
    try {
        warnOfOtherVersion();
        const python::Value builtins("__builtins__");
        module = python::checkedBorrowed(Py_InitModule3(MODULE_NAME, nullptr, nullptr));
        isReload = PyDict_GetItem(PyModule_GetDict(module.get()), builtins.get()) != nullptr;
        execute(module);
        // Short of memory, the making of a class may succeed and leave an error all the same.
        if (PyErr_Occurred() != nullptr) throw python::Error(Where::here());
    } catch (...) {
        PyObject* const globals = module ? PyModule_GetDict(module.get()) : PyEval_GetGlobals();
        python::giveBack(ENTRY_NAME, globals, Where::here());
        python::Error error(Where::here());
        // A module that is in use stays as it is, as one that is written in Python would.
        if (module && !isReload) forget(module);
        error.restore();
    }
}

}  // namespace

}  // namespace morvesk

/// The entry that the interpreter calls when the module is imported.
extern "C" [[gnu::visibility("default")]] void initMorvesk() {
    morvesk::load();
}
