#include "text/root_file.hpp"

#include <algorithm>
#include <iterator>

namespace morvesk::text {

namespace {

constexpr char LINE_END = '\n';

constexpr std::array<std::string_view, 2> FRESH_TV = {
    "#NAME Bouquets (TV)\n",
    "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"userbouquet.favourites.tv\" ORDER BY bouquet\n"};
constexpr std::array<std::string_view, 2> FRESH_RADIO = {
    "#NAME Bouquets (Radio)\n",
    "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"userbouquet.favourites.radio\" ORDER BY bouquet\n"};

constexpr std::string_view TV_REFERENCE = "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"";
constexpr std::string_view RADIO_REFERENCE = "#SERVICE 1:7:2:0:0:0:0:0:0:0:FROM BOUQUET \"";
constexpr std::string_view REFERENCE_END = "\" ORDER BY bouquet";

bool isLineEnd(char byte) {
    return byte == '\r' || byte == LINE_END;
}

void appendLessLineEnds(std::string& content, std::string_view line) {
    // Nearly every line has neither byte, and looking for one at a time is much faster than looking at each.
    if (line.find('\r') == std::string_view::npos && line.find(LINE_END) == std::string_view::npos) {
        content.append(line);
    } else {
        std::remove_copy_if(line.begin(), line.end(), std::back_inserter(content), isLineEnd);
    }
}

}  // namespace

const std::array<std::string_view, 2>& freshRootLines(RootType type) {
    return type == RootType::Radio ? FRESH_RADIO : FRESH_TV;
}

std::string reference(RootType type, std::string_view name) {
    return std::string(type == RootType::Radio ? RADIO_REFERENCE : TV_REFERENCE).append(name).append(REFERENCE_END);
}

void RootFile::addLine(std::string_view line) {
    const bool isEnded = !line.empty() && line.back() == LINE_END;
    if (!isEnded) withoutLineEnd_.emplace(line);
    appendLessLineEnds(content_, isEnded ? line.substr(0, line.size() - 1) : line);
    content_.push_back(LINE_END);
}

bool RootFile::holds(std::string_view reference) const {
    return withoutLineEnd_.find(reference) != withoutLineEnd_.end();
}

void RootFile::addReference(std::string_view reference) {
    content_.append(reference).push_back(LINE_END);
}

}  // namespace morvesk::text
