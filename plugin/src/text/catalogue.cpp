#include "text/catalogue.hpp"

#include <cstring>

#include "text/bytes.hpp"

namespace morvesk::text {

namespace {

constexpr char COMMENT = '#';
constexpr char LINE_END = '\n';
constexpr char COLON = ':';
constexpr std::ptrdiff_t SEPARATOR = 3;  // so many colons

/// The first such byte, or `end`.
const char* find(const char* begin, const char* end, char byte) {
    const auto* found = std::memchr(begin, byte, static_cast<std::size_t>(end - begin));
    return found == nullptr ? end : static_cast<const char*>(found);
}

/// The first separator, or `end`.
const char* findSeparator(const char* begin, const char* end) {
    while (end - begin >= SEPARATOR) {
        const char* const colon = find(begin, end, COLON);
        if (end - colon < SEPARATOR) break;
        if (colon[1] == COLON && colon[2] == COLON) return colon;
        begin = colon + 1;
    }
    return end;
}

/// Where the last line of these bytes begins.
const char* lastLine(const char* begin, const char* end) {
    const auto* lineEnd = memrchr(begin, LINE_END, static_cast<std::size_t>(end - begin));
    return lineEnd == nullptr ? begin : static_cast<const char*>(lineEnd) + 1;
}

std::string_view bytesBetween(const char* begin, const char* end) {
    return {begin, static_cast<std::size_t>(end - begin)};
}

}  // namespace

std::optional<CatalogueEntry> parseCatalogueLine(std::string_view line) {
    CatalogueReader reader(line);
    return reader.readLine(line.data(), line.data() + line.size());
}

CatalogueReader::CatalogueReader(std::string_view body)
    : rest_(body.data()), end_(rest_ + body.size()), separator_(findSeparator(rest_, end_)) {}

// Looks for separators, not for lines: what has none, as most comments and all blank lines, is passed over at once.
std::optional<CatalogueEntry> CatalogueReader::next() {
    while (separator_ != end_) {
        const char* const line = lastLine(rest_, separator_);
        const char* const lineEnd = find(separator_, end_, LINE_END);
        rest_ = lineEnd;
        if (const auto entry = readLine(line, lineEnd)) return entry;
    }
    return std::nullopt;
}

std::optional<CatalogueEntry> CatalogueReader::readLine(const char* line, const char* lineEnd) {
    constexpr auto last = CatalogueEntry::FIELDS - 1;
    std::array<const char*, last> separators;
    std::size_t count = 0;
    while (separator_ < lineEnd) {
        if (count == last || *line == COMMENT) {
            separator_ = findSeparator(lineEnd, end_);
            return std::nullopt;
        }
        separators[count++] = separator_;
        separator_ = findSeparator(separator_ + SEPARATOR, end_);
    }
    if (count < last) return std::nullopt;
    CatalogueEntry entry;
    for (std::size_t field = 0; field < last; ++field) {
        entry.fields[field] = strip(bytesBetween(line, separators[field]));
        line = separators[field] + SEPARATOR;
    }
    entry.fields[last] = strip(bytesBetween(line, lineEnd));
    return entry;
}

}  // namespace morvesk::text
