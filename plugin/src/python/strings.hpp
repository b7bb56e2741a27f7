// Strings that are made by the thousand for a long catalogue, and texts that are put together from others.
#pragma once

#include "python/object.hpp"

namespace morvesk::python {

/// A tuple of strings.
Ref makeStringTuple(const std::string_view* strings, std::size_t count, Where where = Where::here());

/// Whether nothing but this reference knows the string, so that nobody sees it change.
inline bool isNobodyElses(const Ref& string) {
    return Py_REFCNT(string.get()) == 1 && PyString_CHECK_INTERNED(string.get()) == SSTATE_NOT_INTERNED;
}

/// The first `size` bytes of a string that is nobody else's; the memory of the others is given back.
Ref shortened(Ref string, std::size_t size, Where where = Where::here());

/// `format % (values...)`, for a format with a "%s" for every value and no other "%".
Ref makeText(std::string_view format, Arguments&& values, Where where = Where::here());

}  // namespace morvesk::python
