// The address of the download area, out of the receiver's package-feed configuration.
//
// The image's "/etc/opkg/all-feed.conf" begins with one line
//
//     src/gz Qel-all http://server/feeds/all\n
//
// and the channel lists lie beside that feed, in http://server/feeds/settings_download/.
#pragma once

#include <string>
#include <string_view>

namespace morvesk::text {

/// The address of the download area for the first line of the feed configuration, line end included if the line has
/// one.
///
/// Tolerated as the receivers in the field do: the declaration in front of the address is taken off as a set of bytes,
/// not as a prefix, so an address that begins with one of those bytes loses them, and so does the end of a line that
/// has no line end. Every "all" of the address gives way to the download folder. An empty line gives an empty address;
/// nothing checks that the result looks like one.
std::string downloadArea(std::string_view feedLine);

}  // namespace morvesk::text
