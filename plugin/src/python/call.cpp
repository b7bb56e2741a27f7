#include "python/call.hpp"

#include <array>

namespace morvesk::python {

namespace {

/// The arguments of one call side by side: positional ones, then pairs of name and value, the way the interpreter takes
/// them.
class Stack {
  public:
    // The most that a call of ours has: self, three arguments and two keywords.
    static constexpr std::size_t SIZE = 8;

    void push(PyObject* object) { objects_.at(size_++) = object; }
    PyObject** data() noexcept { return objects_.data(); }

  private:
    std::array<PyObject*, SIZE> objects_;
    std::size_t size_ = 0;
};

PyObject* callFunction(PyObject* function, PyObject* self, std::initializer_list<Value> arguments,
                       std::initializer_list<Keyword> keywords, Names names) {
    Stack stack;
    if (self != nullptr) stack.push(self);
    for (const auto& argument : arguments) {
        stack.push(argument.get());
    }
    for (const auto& keyword : keywords) {
        stack.push(names[keyword.name]);
        stack.push(keyword.value.get());
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

Ref makeDict(std::initializer_list<Keyword> keywords, Names names, Where where) {
    if (keywords.size() == 0) return {};
    auto dict = checked(PyDict_New(), where);
    for (const auto& keyword : keywords) {
        checked(PyDict_SetItem(dict.get(), names[keyword.name], keyword.value.get()), where);
    }
    return dict;
}

}  // namespace

PyObject* call(PyObject* callable, std::initializer_list<Value> arguments, std::initializer_list<Keyword> keywords,
               Names names, Where where) {
    if (PyFunction_Check(callable)) return callFunction(callable, nullptr, arguments, keywords, names);
    if (PyMethod_Check(callable) && PyMethod_GET_SELF(callable) != nullptr &&
        PyFunction_Check(PyMethod_GET_FUNCTION(callable))) {
        return callFunction(PyMethod_GET_FUNCTION(callable), PyMethod_GET_SELF(callable), arguments, keywords, names);
    }
    const auto tuple = makeTuple(arguments, where);
    const auto dict = makeDict(keywords, names, where);
    return PyObject_Call(callable, tuple.get(), dict.get());
}

}  // namespace morvesk::python
