#include "python/function.hpp"

#include <array>
#include <string_view>

namespace morvesk::python {

namespace {

using Parameters = std::array<Object, Function::MOST_PARAMETERS>;

/// Gives a call's arguments their places, or raises TypeError, as and in the words in which the interpreter does it for
/// a function that is written in Python.
class Binder {
  public:
    Binder(const Function& function, const Module& module) : function_(function), names_(module.names()) {}

    Parameters bind(PyObject* positional, PyObject* keywords) {
        const auto given = static_cast<std::size_t>(PyTuple_GET_SIZE(positional));
        const auto named = keywords == nullptr ? 0 : static_cast<std::size_t>(PyDict_Size(keywords));
        if (function_.count == 0 && given + named > 0) {
            raise("%.200s() takes no arguments (%zd given)", function_.name, static_cast<Py_ssize_t>(given + named));
        }
        if (given > function_.count) {
            raiseCount(isAnyOptional() ? "at most" : "exactly", function_.count, given + named);
        }
        for (std::size_t index = 0; index < given; ++index) {
            place(index, PyTuple_GET_ITEM(positional, static_cast<Py_ssize_t>(index)));
        }
        if (named > 0) bindKeywords(keywords);
        checkRequired(given);
        return std::move(parameters_);
    }

  private:
    bool isAnyOptional() const { return function_.required < function_.count; }

    void place(std::size_t index, PyObject* value) { parameters_[index] = Object(Ref::borrow(value), names_); }

    void bindKeywords(PyObject* keywords) {
        Py_ssize_t position = 0;
        PyObject* nextKey = nullptr;
        PyObject* nextValue = nullptr;
        while (PyDict_Next(keywords, &position, &nextKey, &nextValue) != 0) {
            // The dict may be the caller's own, and comparing a key may run code that empties it.
            const auto key = Ref::borrow(nextKey);
            const auto value = Ref::borrow(nextValue);
            const auto index = find(key.get());
            if (parameters_[index]) {
                raiseKeyword("%.200s() got multiple values for keyword argument '%.400s'", key.get());
            }
            place(index, value.get());
        }
    }

    std::size_t find(PyObject* key) const {
        if (!PyString_Check(key) && !PyUnicode_Check(key)) {
            raise("%.200s() keywords must be strings", function_.name);
        }
        std::string_view rest = function_.parameters;
        for (std::size_t index = 0; index < function_.count; ++index) {
            const auto end = rest.find(", ");
            const Value name(rest.substr(0, end));
            if (checked(PyObject_RichCompareBool(key, name.get(), Py_EQ), function_.where) != 0) return index;
            if (end != std::string_view::npos) rest.remove_prefix(end + 2);
        }
        raiseKeyword("%.200s() got an unexpected keyword argument '%.400s'", key);
    }

    void checkRequired(std::size_t positional) const {
        for (std::size_t index = positional; index < function_.required; ++index) {
            if (parameters_[index]) continue;
            std::size_t given = 0;
            for (const auto& parameter : parameters_) {
                given += parameter ? 1 : 0;
            }
            raiseCount(isAnyOptional() ? "at least" : "exactly", function_.required, given);
        }
    }

    [[noreturn]] void raiseCount(const char* bound, std::size_t count, std::size_t given) const {
        raise("%.200s() takes %s %zd argument%s (%zd given)", function_.name, bound, static_cast<Py_ssize_t>(count),
              count == 1 ? "" : "s", static_cast<Py_ssize_t>(given));
    }

    /// A keyword may be a unicode string: the text then shows it in the default encoding, with question marks.
    [[noreturn]] void raiseKeyword(const char* format, PyObject* keyword) const {
        Object text(Ref::borrow(keyword), names_);
        if (PyUnicode_Check(keyword)) {
            text = text.attr(Name::encode, function_.where)({}, {Name::errors, "replace"}, function_.where);
        }
        raise(format, function_.name, text.bytes("an encoded keyword", function_.where).data());
    }

    template <typename... Values>
    [[noreturn]] void raise(const char* format, Values... values) const {
        PyErr_Format(PyExc_TypeError, format, values...);
        throw Error(function_.where);
    }

    const Function& function_;
    Names names_;
    Parameters parameters_;
};

}  // namespace

PyObject* run(const Function& function, PyObject* state, PyObject* arguments, PyObject* keywords) noexcept {
    const Module module(state);
    try {
        const auto bound = Binder(function, module).bind(arguments, keywords);
        return function.body(module, bound.data()).release();
    } catch (...) {
        giveBack(function.name, module.dict(), function.where);
        return nullptr;
    }
}

Object makeFunction(const Module& module, PyMethodDef& definition, Where where) {
    const auto moduleName = Ref::borrow(PyDict_GetItem(module.dict(), module.names()[Name::moduleName]));
    return {checked(PyCFunction_NewEx(&definition, module.state(), moduleName.get()), where), module.names()};
}

}  // namespace morvesk::python
