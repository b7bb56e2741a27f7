/* An extension module that only does the imports of the module and binds their names: the least that loading it costs.
 */
#define PY_SSIZE_T_CLEAN
#include <Python.h>

typedef struct {
    const char* module;
    const char* names[3];
    const char* as;
} Import;

static const Import IMPORTS[] = {
    {"Components.Label", {"Label"}, NULL},
    {"Components.ActionMap", {"ActionMap"}, NULL},
    {"Components.GUIComponent", {"GUIComponent"}, NULL},
    {"Components.Sources.StaticText", {"StaticText"}, NULL},
    {"Components.Pixmap", {"Pixmap"}, NULL},
    {"Components.MenuList", {"MenuList"}, NULL},
    {"Components.Console", {"Console"}, "ComConsole"},
    {"Components.Sources.List", {"List"}, NULL},
    {"Screens.Screen", {"Screen"}, NULL},
    {"Screens.MessageBox", {"MessageBox"}, NULL},
    {"Screens.ChoiceBox", {"ChoiceBox"}, NULL},
    {"Tools.Directories", {"*"}, NULL},
    {"Tools.LoadPixmap", {"LoadPixmap"}, NULL},
    {"skin", {"loadSkin"}, NULL},
    {"urllib2", {NULL}, NULL},
    {"datetime", {NULL}, NULL},
    {"time", {NULL}, NULL},
    {"shutil", {NULL}, NULL},
    {"os", {NULL}, NULL},
    {"enigma", {"eServiceReference", "eServiceCenter", "eDVBDB"}, NULL},
    {"ServiceReference", {"ServiceReference"}, NULL},
    {"Screens.InfoBar", {"InfoBar"}, NULL},
    {"Components.NimManager", {"nimmanager"}, NULL},
};

enum { NAMES = sizeof(IMPORTS[0].names) / sizeof(IMPORTS[0].names[0]) };

static PyObject* from_list(const Import* import) {
    Py_ssize_t count = 0;
    while (count < NAMES && import->names[count] != NULL) {
        ++count;
    }
    if (count == 0) {
        Py_INCREF(Py_None);
        return Py_None;
    }
    PyObject* const names = PyTuple_New(count);
    for (Py_ssize_t index = 0; names != NULL && index < count; ++index) {
        PyTuple_SET_ITEM(names, index, PyString_FromString(import->names[index]));
    }
    return names;
}

static int bind_everything(PyObject* imported, PyObject* names) {
    PyObject* name;
    PyObject* value;
    Py_ssize_t position = 0;
    while (PyDict_Next(PyModule_GetDict(imported), &position, &name, &value)) {
        if (PyString_AS_STRING(name)[0] == '_') continue;
        if (PyDict_SetItem(names, name, value) < 0) return -1;
    }
    return 0;
}

static int bind_attribute(PyObject* imported, const char* attribute, const char* name, PyObject* names) {
    PyObject* const value = PyObject_GetAttrString(imported, attribute);
    if (value == NULL) return -1;
    const int failed = PyDict_SetItemString(names, name, value);
    Py_DECREF(value);
    return failed;
}

static int bind(const Import* import, PyObject* imported, PyObject* names) {
    if (import->names[0] == NULL) return PyDict_SetItemString(names, import->module, imported);
    if (import->names[0][0] == '*') return bind_everything(imported, names);
    for (Py_ssize_t index = 0; index < NAMES && import->names[index] != NULL; ++index) {
        const char* const name = import->names[index];
        if (bind_attribute(imported, name, import->as != NULL ? import->as : name, names) < 0) return -1;
    }
    return 0;
}

static int run(const Import* import, PyObject* function, PyObject* names) {
    PyObject* const imported =
        PyObject_CallFunction(function, (char*)"sOON", import->module, names, names, from_list(import));
    if (imported == NULL) return -1;
    const int failed = bind(import, imported, names);
    Py_DECREF(imported);
    return failed;
}

PyMODINIT_FUNC initMorvesk(void);

__attribute__((visibility("default"))) PyMODINIT_FUNC initMorvesk(void) {
    PyObject* const module = Py_InitModule("Morvesk", NULL);
    if (module == NULL) return;
    PyObject* const names = PyModule_GetDict(module);
    PyDict_SetItemString(names, "__builtins__", PyEval_GetBuiltins());
    PyObject* const function = PyDict_GetItemString(PyEval_GetBuiltins(), "__import__");
    for (size_t index = 0; index < sizeof(IMPORTS) / sizeof(IMPORTS[0]); ++index) {
        if (run(&IMPORTS[index], function, names) < 0) return;
    }
}
