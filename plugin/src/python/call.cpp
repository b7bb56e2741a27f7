// Calls of the host's functions.

#include <algorithm>
#include <array>

#include "python/object.hpp"

namespace morvesk::python {

namespace {

/// The arguments of one call side by side: positional ones, then pairs of name and value, the way the interpreter takes
/// them.
class Stack {
  public:
    void push(PyObject* object) noexcept { objects_[size_++] = object; }
    PyObject** data() noexcept { return objects_.data(); }

  private:
    // self, the arguments, and a name and a value for each keyword
    std::array<PyObject*, 1 + References::MOST + 2 * Keywords::MOST> objects_;
    std::size_t size_ = 0;
};

PyObject* callFunction(PyObject* function, PyObject* self, const Arguments& arguments, const Keywords& keywords,
                       Names names) {
    Stack stack;
    if (self != nullptr) stack.push(self);
    for (PyObject* const argument : arguments) {
        stack.push(argument);
    }
    for (std::size_t index = 0; index < keywords.size(); ++index) {
        stack.push(names[keywords.name(index)]);
        stack.push(keywords.value(index));
    }
    const auto positional = static_cast<int>(arguments.size()) + (self != nullptr ? 1 : 0);
    PyObject* const defaults = PyFunction_GET_DEFAULTS(function);
    const bool hasDefaults = defaults != nullptr;
    return PyEval_EvalCodeEx(
        reinterpret_cast<PyCodeObject*>(PyFunction_GET_CODE(function)), PyFunction_GET_GLOBALS(function), nullptr,
        stack.data(), positional, stack.data() + positional, static_cast<int>(keywords.size()),
        hasDefaults ? &PyTuple_GET_ITEM(defaults, 0) : nullptr,
        hasDefaults ? static_cast<int>(PyTuple_GET_SIZE(defaults)) : 0, PyFunction_GET_CLOSURE(function));
}

Ref makeDict(const Keywords& keywords, Names names, Where where) {
    if (keywords.size() == 0) return {};
    auto dict = checked(PyDict_New(), where);
    for (std::size_t index = 0; index < keywords.size(); ++index) {
        checked(PyDict_SetItem(dict.get(), names[keywords.name(index)], keywords.value(index)), where);
    }
    return dict;
}

/// Calls `callable` as a call in Python code does. Returns null, with the interpreter's error set, where it raised;
/// throws Error where the arguments could not be handed over.
///
/// A function that is written in Python, as nearly all of the host's are, gets its arguments without a tuple and a dict
/// around them, as it would from Python code.
PyObject* call(PyObject* callable, Arguments&& arguments, const Keywords& keywords, Names names, Where where) {
    if (PyFunction_Check(callable)) return callFunction(callable, nullptr, arguments, keywords, names);
    if (PyMethod_Check(callable) && PyMethod_GET_SELF(callable) != nullptr &&
        PyFunction_Check(PyMethod_GET_FUNCTION(callable))) {
        return callFunction(PyMethod_GET_FUNCTION(callable), PyMethod_GET_SELF(callable), arguments, keywords, names);
    }
    const auto tuple = makeTuple(std::move(arguments), where);
    const auto dict = makeDict(keywords, names, where);
    return PyObject_Call(callable, tuple.get(), dict.get());
}

}  // namespace

Ref makeTuple(Arguments&& items, Where where) {
    auto tuple = checked(PyTuple_New(static_cast<Py_ssize_t>(items.size())), where);
    std::copy(items.begin(), items.end(), &PyTuple_GET_ITEM(tuple.get(), 0));
    items.release();
    return tuple;
}

Object Object::operator()(Arguments&& arguments, const Keywords& keywords, Where where) const {
    return {checked(python::call(get(), std::move(arguments), keywords, names_, where), where), names_};
}

}  // namespace morvesk::python
