// The catalogue of the channel lists on the server, "qel_settings.download".
//
// One line an entry, four fields with ":::" between them:
//
//     provider:::date:::description:::archive path\n
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace morvesk::text {

/// The fields of a catalogue line in their order, without the white space around them; they point into the body.
struct CatalogueEntry {
    static constexpr std::size_t FIELDS = 4;

    std::array<std::string_view, FIELDS> fields;
};

/// The entry that a line without its line end holds, if it holds one.
///
/// Tolerated without a word: lines that begin with "#" (a blank before it makes it an ordinary line), lines that do not
/// have exactly three separators, empty fields, a carriage return at the end. A field cannot hold a separator, since
/// nothing escapes one; of a longer run of colons the first three separate.
std::optional<CatalogueEntry> parseCatalogueLine(std::string_view line);

/// Reads a catalogue from front to back without copying it; the body must outlive the reader and its entries. The last
/// line needs no line end.
class CatalogueReader {
  public:
    explicit CatalogueReader(std::string_view body);

    /// The next entry, or nothing at the end of the catalogue.
    std::optional<CatalogueEntry> next();

  private:
    friend std::optional<CatalogueEntry> parseCatalogueLine(std::string_view line);

    /// The entry in the line that the next separator stands in, if it holds one; goes on to the first separator behind
    /// it.
    std::optional<CatalogueEntry> readLine(const char* line, const char* lineEnd);

    const char* rest_;  // behind the line that was read last
    const char* end_;
    const char* separator_;  // the next one, or the end
};

}  // namespace morvesk::text
