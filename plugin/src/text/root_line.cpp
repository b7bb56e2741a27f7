#include "text/root_line.hpp"

#include "text/bytes.hpp"

namespace morvesk::text {

namespace {

constexpr std::string_view USER_BOUQUET = "userbouquet";

std::string_view lessLastByte(std::string_view bytes) {
    return bytes.substr(0, bytes.empty() ? 0 : bytes.size() - 1);
}

/// What stands between the first two `quote`s; up to the last byte where the second is missing, from the line's start
/// where both are.
std::string_view between(std::string_view line, char quote) {
    const auto opening = line.find(quote);
    const auto rest = opening == std::string_view::npos ? line : line.substr(opening + 1);
    const auto closing = rest.find(quote);
    return closing == std::string_view::npos ? lessLastByte(rest) : rest.substr(0, closing);
}

}  // namespace

std::string_view quotedName(std::string_view line) {
    const bool hasDoubleQuotes = line.find('"') != std::string_view::npos;
    const auto name = between(line, '"');
    const bool isName = hasDoubleQuotes ? !name.empty() : startsWith(name, USER_BOUQUET);
    return isName ? name : between(line, '\'');
}

bool namesUserBouquet(std::string_view name, std::string_view suffix) {
    return startsWith(name, USER_BOUQUET) && endsWith(name, suffix);
}

}  // namespace morvesk::text
