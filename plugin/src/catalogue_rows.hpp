// What is done once for every line of a catalogue: entries out of its text, rows out of its entries.
#pragma once

#include "python/module.hpp"

namespace morvesk::catalogue {

/// The entries of a catalogue, in its order, as a list of tuples of four strings. The catalogue is a string, or what
/// else splitting a body into its lines has given. A long string that nobody else holds is used up as it is read.
python::Ref readEntries(python::Object catalogue);

/// Appends a row for each entry to `self.list`: archive, both texts, picture, second field.
///
/// Raises what an entry raises that has no four items, and what the host raises for the picture.
void appendRows(const python::Module& module, const python::Object& self, const python::Object& entries);

}  // namespace morvesk::catalogue
