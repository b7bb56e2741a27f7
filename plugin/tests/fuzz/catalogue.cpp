// The entries of any catalogue, read as a whole and line by line.

#include "text/catalogue.hpp"

#include "python_text.hpp"
#include "target.hpp"

namespace {

using morvesk::text::CatalogueEntry;
using Entries = std::vector<std::vector<std::string>>;

std::vector<std::string> fieldsOf(const CatalogueEntry& entry) {
    return {entry.fields.begin(), entry.fields.end()};
}

std::string shown(const Entries& entries) {
    std::string text;
    for (const auto& entry : entries) {
        for (const auto& field : entry) {
            text += std::to_string(field.size()) + " '" + field + "', ";
        }
        text += "\n";
    }
    return text;
}

Entries wanted(const std::string& body) {
    Entries entries;
    for (const auto& line : fuzz::split(body, "\n")) {
        if (fuzz::startsWith(line, "#")) continue;
        auto fields = fuzz::split(line, ":::");
        if (fields.size() != CatalogueEntry::FIELDS) continue;
        for (auto& field : fields) {
            field = fuzz::strip(field);
        }
        entries.push_back(fields);
    }
    return entries;
}

Entries read(const std::string& body) {
    Entries entries;
    morvesk::text::CatalogueReader reader(body);
    while (const auto entry = reader.next()) {
        entries.push_back(fieldsOf(*entry));
    }
    return entries;
}

Entries readLineByLine(const std::string& body) {
    Entries entries;
    for (const auto& line : fuzz::split(body, "\n")) {
        if (const auto entry = morvesk::text::parseCatalogueLine(line)) entries.push_back(fieldsOf(*entry));
    }
    return entries;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string body(reinterpret_cast<const char*>(data), size);
    const auto entries = shown(wanted(body));
    fuzz::expectEqual("the catalogue", shown(read(body)), entries);
    fuzz::expectEqual("the catalogue, line by line", shown(readLineByLine(body)), entries);
    return 0;
}
