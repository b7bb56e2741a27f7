#include "python/import.hpp"

namespace morvesk::python {

namespace {

/// The names of the statement as `__import__` wants to know them: None, ("a", "b") or ("*",).
Ref fromList(const Import& statement, Where where) {
    if (statement.form == Import::Form::Module) return Value(NONE).ref();
    if (statement.form == Import::Form::Everything) return makeTuple({"*"}, where);
    const auto names = makeList({}, where);
    for (const auto& item : statement.items) {
        if (item.name == nullptr) break;
        checked(PyList_Append(names.get(), Value(item.name).get()), where);
    }
    return checked(PyList_AsTuple(names.get()), where);
}

Object callImport(const Import& statement, const Module& target, Where where) {
    const auto function = target.builtin(Name::import);
    if (!function) throw Error(PyExc_ImportError, "__import__ not found", where);
    const auto globals = Ref::borrow(target.dict());
    return function({statement.module, globals, globals, fromList(statement, where)}, where);
}

Ref importItem(const Object& module, const char* name, Where where) {
    auto value = Ref::steal(PyObject_GetAttrString(module.get(), name));
    if (value) return value;
    if (PyErr_ExceptionMatches(PyExc_AttributeError) != 0) {
        PyErr_Format(PyExc_ImportError, "cannot import name %.230s", name);
    }
    throw Error(where);
}

/// The attribute, or nothing where the module has none of that name.
Ref optionalAttribute(const Object& module, const char* name, Where where) {
    auto value = Ref::steal(PyObject_GetAttrString(module.get(), name));
    if (value) return value;
    if (PyErr_ExceptionMatches(PyExc_AttributeError) == 0) throw Error(where);
    PyErr_Clear();
    return {};
}

bool isPrivate(const Ref& name) {
    return PyString_Check(name.get()) && PyString_AS_STRING(name.get())[0] == '_';
}

/// `__all__` where the module has it, else the keys of its namespace.
std::pair<Ref, bool> offeredNames(const Object& module, Where where) {
    if (auto all = optionalAttribute(module, "__all__", where)) return {std::move(all), false};
    const auto dict = optionalAttribute(module, "__dict__", where);
    if (!dict) {
        throw Error(PyExc_ImportError, "from-import-* object has no __dict__ and no __all__", where);
    }
    return {checked(PyObject_CallMethod(dict.get(), const_cast<char*>("keys"), nullptr), where), true};
}

void importEverything(const Object& module, PyObject* namespaceDict, Where where) {
    const auto [names, skipPrivate] = offeredNames(module, where);
    for (Py_ssize_t index = 0;; ++index) {
        const auto name = Ref::steal(PySequence_GetItem(names.get(), index));
        if (!name) {
            if (PyErr_ExceptionMatches(PyExc_IndexError) == 0) throw Error(where);
            PyErr_Clear();
            return;
        }
        if (skipPrivate && isPrivate(name)) continue;
        const auto value = checked(PyObject_GetAttr(module.get(), name.get()), where);
        checked(PyDict_SetItem(namespaceDict, name.get(), value.get()), where);
    }
}

}  // namespace

void Import::run(const Module& target, const char* file) const {
    const Where where{file, line};
    const auto imported = callImport(*this, target, where);
    switch (form) {
        case Form::Module:
            checked(PyDict_SetItemString(target.dict(), module, imported.get()), where);
            break;
        case Form::Items:
            for (const auto& item : items) {
                if (item.name == nullptr) break;
                const auto value = importItem(imported, item.name, where);
                checked(PyDict_SetItemString(target.dict(), item.as == nullptr ? item.name : item.as, value.get()),
                        where);
            }
            break;
        case Form::Everything:
            importEverything(imported, target.dict(), where);
            break;
    }
}

}  // namespace morvesk::python
