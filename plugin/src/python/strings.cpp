#include "python/strings.hpp"

#include <algorithm>

namespace morvesk::python {

Ref makeStringTuple(const std::string_view* strings, std::size_t count, Where where) {
    auto tuple = checked(PyTuple_New(static_cast<Py_ssize_t>(count)), where);
    for (std::size_t index = 0; index < count; ++index) {
        const auto size = static_cast<Py_ssize_t>(strings[index].size());
        PyTuple_SET_ITEM(tuple.get(), static_cast<Py_ssize_t>(index),
                         checked(PyString_FromStringAndSize(strings[index].data(), size), where).release());
    }
    // Strings refer to nothing: without this, the collector would walk over a long catalogue again and again.
    PyObject_GC_UnTrack(tuple.get());
    return tuple;
}

Ref shortened(Ref string, std::size_t size, Where where) {
    if (static_cast<Py_ssize_t>(size) == PyString_GET_SIZE(string.get())) return string;
    PyObject* resized = string.release();
    checked(_PyString_Resize(&resized, static_cast<Py_ssize_t>(size)), where);
    return Ref::steal(resized);
}

namespace {

constexpr std::string_view PLACEHOLDER = "%s";

bool areStrings(const Arguments& values) {
    return std::all_of(values.begin(), values.end(), [](PyObject* value) { return PyString_CheckExact(value); });
}

Py_ssize_t filledSize(std::string_view format, const Arguments& strings) {
    auto size = static_cast<Py_ssize_t>(format.size() - strings.size() * PLACEHOLDER.size());
    for (PyObject* const string : strings) {
        size += PyString_GET_SIZE(string);
    }
    return size;
}

/// What the formatting does to strings, without its detour over every byte of the format.
Ref fill(std::string_view format, const Arguments& strings, Where where) {
    auto text = checked(PyString_FromStringAndSize(nullptr, filledSize(format, strings)), where);
    char* end = PyString_AS_STRING(text.get());
    for (PyObject* const string : strings) {
        const auto placeholder = format.find(PLACEHOLDER);
        end = std::copy_n(format.data(), placeholder, end);
        end = std::copy_n(PyString_AS_STRING(string), PyString_GET_SIZE(string), end);
        format.remove_prefix(placeholder + PLACEHOLDER.size());
    }
    std::copy(format.begin(), format.end(), end);
    return text;
}

}  // namespace

Ref makeText(std::string_view format, Arguments&& values, Where where) {
    if (areStrings(values)) return fill(format, values, where);
    const Value text(format);
    const auto tuple = makeTuple(std::move(values), where);
    return checked(PyString_Format(text.get(), tuple.get()), where);
}

}  // namespace morvesk::python
