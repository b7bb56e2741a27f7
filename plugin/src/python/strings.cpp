#include "python/strings.hpp"

#include <algorithm>

namespace morvesk::python {

Ref untracked(Ref tuple) {
    for (Py_ssize_t index = 0; index < PyTuple_GET_SIZE(tuple.get()); ++index) {
        if (PyObject_IS_GC(PyTuple_GET_ITEM(tuple.get(), index))) return tuple;
    }
    PyObject_GC_UnTrack(tuple.get());
    return tuple;
}

Ref makeStringTuple(const std::string_view* strings, std::size_t count, Where where) {
    auto tuple = checked(PyTuple_New(static_cast<Py_ssize_t>(count)), where);
    for (std::size_t index = 0; index < count; ++index) {
        const auto size = static_cast<Py_ssize_t>(strings[index].size());
        PyTuple_SET_ITEM(tuple.get(), static_cast<Py_ssize_t>(index),
                         checked(PyString_FromStringAndSize(strings[index].data(), size), where).release());
    }
    return untracked(std::move(tuple));
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

/// What the formatting does to strings, without its detours.
Ref fill(std::string_view format, const Arguments& strings, Where where) {
    auto text = checked(PyString_FromStringAndSize(nullptr, filledSize(format, strings)), where);
    PyObject* const* string = strings.begin();
    char* end = PyString_AS_STRING(text.get());
    for (std::size_t index = 0; index < format.size(); ++index) {
        if (format[index] == '%') {
            end = std::copy_n(PyString_AS_STRING(*string), PyString_GET_SIZE(*string), end);
            ++string;
            ++index;
        } else {
            *end++ = format[index];
        }
    }
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
