// The name of a user bouquet in a line of a root file.
//
//     #SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.favourites.tv" ORDER BY bouquet
#pragma once

#include <string_view>

namespace morvesk::text {

/// The file name that a root-file line refers to, or what stands in its place; it points into the line.
///
/// The name stands between the first two double quotes; where that leaves nothing, between the first two single quotes,
/// which some list editors write. A quote that is not closed reaches up to, and not including, the last byte of the
/// line (its line end). A line without double quotes may be a bare file name: the whole line less its last byte, if
/// that begins like the name of a user bouquet, and otherwise single quotes are looked for.
///
/// Most lines of a root file do not name a user bouquet; what comes back for them is arbitrary, see namesUserBouquet().
std::string_view quotedName(std::string_view line);

/// Whether `name` is that of a user bouquet file with the given suffix (".tv" or ".radio").
bool namesUserBouquet(std::string_view name, std::string_view suffix);

}  // namespace morvesk::text
