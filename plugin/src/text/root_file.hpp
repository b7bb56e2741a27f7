// The content of a root file: "bouquets.tv" and "bouquets.radio", which list the receiver's user bouquets in their
// order.
//
//     #NAME Bouquets (TV)\n
//     #SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.favourites.tv" ORDER BY bouquet\n
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace morvesk::text {

enum class RootType { Tv, Radio };

/// The lines of a root file that is started afresh: its name and the favourites, line ends included.
///
/// The radio favourites carry the type field of a TV reference, as the receivers' own first radio root file does.
const std::array<std::string_view, 2>& freshRootLines(RootType type);

/// A root file that is being extended: the lines it had first, in their order, then new references.
class RootFile {
  public:
    explicit RootFile(RootType type) : type_(type) {}

    /// Takes over a line as it was read; its bytes must outlive the root file.
    void addLine(std::string_view line);

    /// Appends a reference to the user bouquet file `name`, unless it equals one of the lines as they were read, line
    /// end included. Tells whether it did.
    ///
    /// A reference has no line end, so only a line that was read without one can equal it: the last line of a file that
    /// does not end in a line end.
    bool addReference(std::string_view name);

    /// The bytes of the content, or more.
    std::size_t room() const { return room_ + references_.size(); }

    /// Writes the content to where there is that much room; gives the size of it.
    ///
    /// Every line ends in one "\n"; any other "\r" and "\n" of a line is dropped. References stay as they are.
    std::size_t write(char* content) const;

  private:
    bool holds(std::string_view reference) const;

    RootType type_;
    std::vector<std::string_view> lines_;
    std::vector<std::string_view> withoutLineEnd_;
    std::size_t room_ = 0;  // for the lines
    std::string references_;
};

}  // namespace morvesk::text
