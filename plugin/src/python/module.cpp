#include "python/module.hpp"

#include <cstring>

namespace morvesk::python {

namespace {

/// The built-ins that functions of the module see: what the namespace calls `__builtins__`, a module or its dict.
PyObject* builtinsOf(PyObject* globals, Names names) {
    PyObject* builtins = PyDict_GetItem(globals, names[Name::builtin]);
    if (builtins == nullptr) return PyEval_GetBuiltins();
    return PyModule_Check(builtins) ? PyModule_GetDict(builtins) : builtins;
}

Ref lookUp(PyObject* dict, PyObject* name) {
    return Ref::borrow(PyDict_Check(dict) ? PyDict_GetItem(dict, name) : nullptr);
}

}  // namespace

Ref Module::make(PyObject* module, Where where) {
    constexpr auto count = static_cast<Py_ssize_t>(Name::Count);
    auto state = checked(PyTuple_New(NAMES + count), where);
    PyTuple_SET_ITEM(state.get(), MODULE, Ref::borrow(module).release());
    const char* name = NAME_STRINGS;
    for (Py_ssize_t index = 0; index < count; ++index) {
        PyTuple_SET_ITEM(state.get(), NAMES + index, checked(PyString_InternFromString(name), where).release());
        name += std::strlen(name) + 1;
    }
    const Module made(state.get());
    auto open = made.builtin(Name::open);
    if (!open) throw Error(PyExc_NameError, "name 'open' is not defined", where);
    PyTuple_SET_ITEM(state.get(), OPEN, open.release());
    return state;
}

Object Module::global(Name name, Where where) const {
    if (auto own = lookUp(dict(), names()[name])) return {std::move(own), names()};
    if (auto builtIn = builtin(name)) return builtIn;
    PyErr_Format(PyExc_NameError, "global name '%.200s' is not defined", PyString_AS_STRING(names()[name]));
    throw Error(where);
}

Object Module::builtin(Name name) const {
    return {lookUp(builtinsOf(dict(), names()), names()[name]), names()};
}

Object Module::open() const {
    return {Ref::borrow(PyTuple_GET_ITEM(state_, OPEN)), names()};
}

Object Module::translate(std::string_view text, Where where) const {
    return global(Name::translate, where)({text}, where);
}

}  // namespace morvesk::python
