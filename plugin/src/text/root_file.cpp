#include "text/root_file.hpp"

#include <algorithm>

#include "text/bytes.hpp"

namespace morvesk::text {

namespace {

constexpr std::string_view LINE_END = "\n";

constexpr std::array<std::string_view, 2> FRESH_TV = {
    "#NAME Bouquets (TV)\n",
    "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"userbouquet.favourites.tv\" ORDER BY bouquet\n"};
constexpr std::array<std::string_view, 2> FRESH_RADIO = {
    "#NAME Bouquets (Radio)\n",
    "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"userbouquet.favourites.radio\" ORDER BY bouquet\n"};

constexpr std::string_view TV_REFERENCE = "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"";
constexpr std::string_view RADIO_REFERENCE = "#SERVICE 1:7:2:0:0:0:0:0:0:0:FROM BOUQUET \"";
constexpr std::string_view REFERENCE_END = "\" ORDER BY bouquet";

std::string_view lessLineEnd(std::string_view line) {
    return endsWith(line, LINE_END) ? line.substr(0, line.size() - 1) : line;
}

char* append(char* end, std::string_view bytes) {
    return std::copy(bytes.begin(), bytes.end(), end);
}

char* appendLine(char* end, std::string_view line) {
    for (auto inner = line.find('\n'); inner != std::string_view::npos; inner = line.find('\n')) {
        end = append(end, line.substr(0, inner));
        line.remove_prefix(inner + 1);
    }
    return append(append(end, line), LINE_END);
}

}  // namespace

const std::array<std::string_view, 2>& freshRootLines(RootType type) {
    return type == RootType::Radio ? FRESH_RADIO : FRESH_TV;
}

void RootFile::addLine(std::string_view line) {
    lines_.push_back(line);
    if (!endsWith(line, LINE_END)) withoutLineEnd_.push_back(line);
    room_ += line.size() + LINE_END.size();
}

bool RootFile::holds(std::string_view reference) const {
    for (const auto line : withoutLineEnd_) {
        if (line == reference) return true;
    }
    return false;
}

bool RootFile::addReference(std::string_view name) {
    const auto start = references_.size();
    references_.append(type_ == RootType::Radio ? RADIO_REFERENCE : TV_REFERENCE).append(name).append(REFERENCE_END);
    if (holds(std::string_view(references_).substr(start))) {
        references_.resize(start);
        return false;
    }
    references_.append(LINE_END);
    return true;
}

std::size_t RootFile::write(char* content) const {
    char* end = content;
    for (const auto line : lines_) {
        end = appendLine(end, lessLineEnd(line));
    }
    // Seldom is there any, and looking for the first one is much faster than looking at each byte.
    const auto carriageReturn = std::string_view(content, static_cast<std::size_t>(end - content)).find('\r');
    if (carriageReturn != std::string_view::npos) end = std::remove(content + carriageReturn, end, '\r');
    return static_cast<std::size_t>(append(end, references_) - content);
}

}  // namespace morvesk::text
