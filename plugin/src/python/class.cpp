#include "python/class.hpp"

namespace morvesk::python {

namespace {

/// The base's `__class__`, which it may claim for itself, else its type.
Ref metaclassOf(const Object& base) {
    auto metaclass = Ref::steal(PyObject_GetAttrString(base.get(), "__class__"));
    if (metaclass) return metaclass;
    PyErr_Clear();
    return Ref::borrow(reinterpret_cast<PyObject*>(Py_TYPE(base.get())));
}

/// The statement says more about a TypeError, which likely means that the base is not a class.
[[noreturn]] void throwWithHint(Where where) {
    Error error(where);
    if (error.matches(Ref::borrow(PyExc_TypeError)) && error.value() && PyString_Check(error.value().get())) {
        error.replaceValue(checked(PyString_FromFormat("Error when calling the metaclass bases\n    %s",
                                                       PyString_AS_STRING(error.value().get())),
                                   where));
    }
    error.restore();
    throw Error(where);
}

}  // namespace

Ref makeMethod(const Object& function, const Object& base, Where where) {
    // Found in the class's dict and called from there, it has to know whose instances it takes: every object, but for
    // the instances of an old-style class, which are objects of another kind.
    PyObject* const owner = PyClass_Check(base.get()) ? base.get() : reinterpret_cast<PyObject*>(&PyBaseObject_Type);
    return checked(PyMethod_New(function.get(), nullptr, owner), where);
}

Object makeClass(const char* name, const Object& base, const Ref& body, Where where) {
    const auto metaclass = metaclassOf(base);
    const auto arguments = makeTuple({name, makeTuple({base}, where), body}, where);
    auto made = Ref::steal(PyObject_Call(metaclass.get(), arguments.get(), nullptr));
    if (!made) throwWithHint(where);
    return {std::move(made), base.names()};
}

}  // namespace morvesk::python
