// The content of a root file: "bouquets.tv" and "bouquets.radio", which list the receiver's user bouquets in their
// order.
//
//     #NAME Bouquets (TV)\n
//     #SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.favourites.tv" ORDER BY bouquet\n
#pragma once

#include <array>
#include <cstddef>
#include <set>
#include <string>
#include <string_view>

namespace morvesk::text {

enum class RootType { Tv, Radio };

/// The lines of a root file that is started afresh: its name and the favourites, line ends included.
///
/// The radio favourites carry the type field of a TV reference, as the receivers' own first radio root file does.
const std::array<std::string_view, 2>& freshRootLines(RootType type);

/// The line, without line end, that refers to the user bouquet file `name`.
std::string reference(RootType type, std::string_view name);

/// A root file that is being extended: the lines it had first, in their order, then new references.
class RootFile {
  public:
    /// Makes room for that many bytes of lines.
    void reserve(std::size_t bytes) { content_.reserve(bytes); }

    /// Takes over a line as it was read. In the content it ends in one "\n"; every other "\r" and "\n" of it is
    /// dropped.
    void addLine(std::string_view line);

    /// Whether `reference` equals one of the lines as they were read, line end included.
    ///
    /// A reference has no line end, so only a line that was read without one can equal it: the last line of a file that
    /// does not end in a line end.
    bool holds(std::string_view reference) const;

    /// Appends a new reference, which holds() does not look at.
    void addReference(std::string_view reference);

    const std::string& content() const { return content_; }

  private:
    std::string content_;
    std::set<std::string, std::less<>> withoutLineEnd_;
};

}  // namespace morvesk::text
