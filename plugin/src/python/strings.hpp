// Strings that are made by the thousand for a long catalogue, and texts that are put together from others.
#pragma once

#include "python/object.hpp"

namespace morvesk::python {

/// A tuple that the collector of cycles need not look at, if none of its items can refer to anything: else it would
/// walk over a long list again and again.
Ref untracked(Ref tuple);

/// An untracked tuple of strings.
Ref makeStringTuple(const std::string_view* strings, std::size_t count, Where where = Where::here());

/// Whether nothing but this reference knows the string, so that nobody sees it change.
inline bool isNobodyElses(const Ref& string) {
    return Py_REFCNT(string.get()) == 1 && PyString_CHECK_INTERNED(string.get()) == SSTATE_NOT_INTERNED;
}

/// The first `size` bytes of a string that is nobody else's; the memory of the others is given back.
Ref shortened(Ref string, std::size_t size, Where where = Where::here());

/// A string that `write` writes: it gets the place for it, where there is so much room, and tells how much it wrote.
template <typename Write>
Ref makeString(std::size_t room, Write write, Where where = Where::here()) {
    auto string = checked(PyString_FromStringAndSize(nullptr, static_cast<Py_ssize_t>(room)), where);
    const std::size_t size = write(PyString_AS_STRING(string.get()));
    return shortened(std::move(string), size, where);
}

/// Hands the bytes of every string of a list to `take`, which leaves the list as it is.
///
/// Raises TypeError for any other object in it, as Object::bytes() does.
template <typename Take>
void forEachString(const Object& list, const char* what, Take take, Where where = Where::here()) {
    for (Py_ssize_t index = 0; index < PyList_GET_SIZE(list.get()); ++index) {
        const Object string(Ref::borrow(PyList_GET_ITEM(list.get(), index)), list.names());
        take(string.bytes(what, where));
    }
}

/// `format % (values...)`, for a format with a "%s" for every value and no other "%".
Ref makeText(std::string_view format, Arguments&& values, Where where = Where::here());

}  // namespace morvesk::python
