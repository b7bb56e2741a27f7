#include "text/catalogue.hpp"

#include "text/bytes.hpp"

namespace morvesk::text {

namespace {

constexpr char COMMENT = '#';
constexpr char LINE_END = '\n';
constexpr std::string_view SEPARATOR = ":::";

std::string_view takeLine(std::string_view& rest) {
    const auto end = rest.find(LINE_END);
    const auto line = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    return line;
}

}  // namespace

std::optional<CatalogueEntry> parseCatalogueLine(std::string_view line) {
    if (line.empty() || line.front() == COMMENT) return std::nullopt;
    CatalogueEntry entry;
    for (std::size_t field = 0; field + 1 < CatalogueEntry::FIELDS; ++field) {
        const auto end = line.find(SEPARATOR);
        if (end == std::string_view::npos) return std::nullopt;
        entry.fields[field] = strip(line.substr(0, end));
        line.remove_prefix(end + SEPARATOR.size());
    }
    if (line.find(SEPARATOR) != std::string_view::npos) return std::nullopt;
    entry.fields.back() = strip(line);
    return entry;
}

std::optional<CatalogueEntry> CatalogueReader::next() {
    while (!rest_.empty()) {
        if (const auto entry = parseCatalogueLine(takeLine(rest_))) return entry;
    }
    return std::nullopt;
}

}  // namespace morvesk::text
