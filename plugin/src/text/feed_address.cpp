#include "text/feed_address.hpp"

#include "text/bytes.hpp"

namespace morvesk::text {

namespace {

constexpr std::string_view FEED_DECLARATION = "src/gz Qel-all ";
constexpr std::string_view FEED_FOLDER = "all";
constexpr std::string_view DOWNLOAD_FOLDER = "settings_download/";

bool belongsToDeclaration(char byte) {
    return FEED_DECLARATION.find(byte) != std::string_view::npos;
}

}  // namespace

std::string downloadArea(std::string_view feedLine) {
    std::string_view rest = strip(stripWhere(feedLine, belongsToDeclaration));
    std::string address;
    for (auto word = rest.find(FEED_FOLDER); word != std::string_view::npos; word = rest.find(FEED_FOLDER)) {
        address.append(rest.substr(0, word)).append(DOWNLOAD_FOLDER);
        rest.remove_prefix(word + FEED_FOLDER.size());
    }
    return address.append(rest);
}

}  // namespace morvesk::text
