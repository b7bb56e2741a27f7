// The favourites: what the owner's answer leads to, the merge of new user bouquets, and the writer of the root files.
#pragma once

#include "python/module.hpp"

namespace morvesk::favourites {

using python::Module;
using python::Object;

/// `installNewFavourites(self, append=("NONE", True))`: carries out the owner's answer, a pair (text, whether to
/// append), or None where the question was left without one.
///
/// Raises what the merge raises.
Object installNewFavourites(const Module& module, const Object& self, const Object& append);

/// `mergeNewFavourites(self)`: adds the unpacked list's user bouquets, services and transponders to the receiver's own.
///
/// A user bouquet whose file name is taken gets the time stamp of this call into its name. Raises IOError where a root
/// file of the list cannot be read, having written nothing; what the writer or the database raises leaves what was
/// written so far.
Object mergeNewFavourites(const Module& module, const Object& self);

/// `writeBouquetFiles(self, root_type, fav_list)`: copies user bouquets, pairs of (source, target) names, and adds
/// their references to the root file of `root_type`, "tv" or "radio".
///
/// The root file is written last and in place: an error before that leaves copies without a reference to them.
Object writeBouquetFiles(const Module& module, const Object& self, const Object& rootType, const Object& favourites);

}  // namespace morvesk::favourites
