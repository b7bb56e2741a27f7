// Functions and methods of ours that the interpreter calls: described by data, bound to their arguments as Python
// functions are, and fenced by the one boundary that no C++ exception crosses.
#pragma once

#include <cstddef>
#include <utility>

#include "python/module.hpp"

namespace morvesk::python {

/// A function as its `def` line would say it.
struct Function {
    static constexpr std::size_t MOST_PARAMETERS = 4;

    const char* name;
    const char* parameters;  // "self, session, plugin_path"
    unsigned count;
    unsigned required;
    Object (*body)(const Module&, const Object* arguments);
    Where where;
};

namespace detail {

template <auto Body>
struct Adapter;

template <typename... Parameters, Object (*Body)(const Module&, Parameters...)>
struct Adapter<Body> {
    static constexpr std::size_t COUNT = sizeof...(Parameters);

    template <std::size_t... Index>
    static Object spread(const Module& module, const Object* arguments, std::index_sequence<Index...>) {
        return Body(module, arguments[Index]...);
    }

    static Object call(const Module& module, [[maybe_unused]] const Object* arguments) {
        return spread(module, arguments, std::make_index_sequence<COUNT>());
    }
};

}  // namespace detail

/// Describes `Body`, a function of a module and of as many objects as there are parameters. The last `optional`
/// parameters may be left out by the caller; the body then gets an empty object for them.
template <auto Body>
constexpr Function define(const char* name, const char* parameters = "", unsigned optional = 0,
                          Where where = Where::here()) {
    constexpr unsigned count = detail::Adapter<Body>::COUNT;
    static_assert(count <= Function::MOST_PARAMETERS);
    return {name, parameters, count, count - optional, detail::Adapter<Body>::call, where};
}

/// Runs a function for the interpreter: binds the arguments, calls the body, turns what is thrown into a raised
/// exception.
PyObject* run(const Function& function, PyObject* state, PyObject* arguments, PyObject* keywords) noexcept;

namespace detail {

/// The C function for one entry of a table: each has its own, since a C function gets no word of which one it is.
template <auto& Table, std::size_t Index>
PyObject* enter(PyObject* state, PyObject* arguments, PyObject* keywords) noexcept {
    return run(Table[Index], state, arguments, keywords);
}

template <auto& Table, std::size_t... Index>
auto& definitions(std::index_sequence<Index...> /*all*/) {
    // The interpreter keeps pointers to these for as long as it runs and never writes to them.
    static PyMethodDef methods[] = {{Table[Index].name,
                                     reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(enter<Table, Index>)),
                                     METH_VARARGS | METH_KEYWORDS, nullptr}...};
    return methods;
}

}  // namespace detail

/// What the interpreter wants to know of the functions of a table.
template <auto& Table>
auto& definitions() {
    return detail::definitions<Table>(std::make_index_sequence<Table.size()>());
}

/// A callable of the interpreter over an entry of a table, as a member of `module`.
Object makeFunction(const Module& module, PyMethodDef& definition, Where where = Where::here());

}  // namespace morvesk::python
