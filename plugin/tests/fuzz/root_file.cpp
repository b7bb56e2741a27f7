// The content of any root file after any bouquets were added to it.
//
// An input is one byte for the kind of file and for how it is read, then the names of the bouquets to add, each up to a
// NUL byte, an empty one for the end of them, then the file. A file that gives out lines in its own way has them up to
// 0x01.

#include "text/root_file.hpp"

#include <algorithm>

#include "python_text.hpp"
#include "target.hpp"

namespace {

using morvesk::text::RootFile;
using morvesk::text::RootType;

struct Input {
    RootType type = RootType::Tv;
    std::vector<std::string> lines;
    std::vector<std::string> names;
};

constexpr unsigned RADIO = 1;
constexpr unsigned OWN_LINES = 2;
constexpr unsigned FRESH = 4;

Input parse(const std::string& bytes) {
    Input input;
    if (bytes.empty()) return input;
    const auto kind = static_cast<unsigned char>(bytes[0]);
    std::string rest = bytes.substr(1);
    for (auto end = rest.find('\0'); end != std::string::npos && end > 0; end = rest.find('\0')) {
        input.names.push_back(rest.substr(0, end));
        rest.erase(0, end + 1);
    }
    if (!rest.empty() && rest[0] == '\0') rest.erase(0, 1);
    input.type = (kind & RADIO) != 0 ? RootType::Radio : RootType::Tv;
    if ((kind & FRESH) != 0) {
        for (const auto line : morvesk::text::freshRootLines(input.type)) {
            input.lines.emplace_back(line);
        }
    } else {
        input.lines = (kind & OWN_LINES) != 0 ? fuzz::split(rest, "\x01") : fuzz::lines(rest);
    }
    return input;
}

std::string referenceTo(RootType type, const std::string& name) {
    return (type == RootType::Radio ? "#SERVICE 1:7:2:0:0:0:0:0:0:0:FROM BOUQUET \""
                                    : "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"") +
           name + "\" ORDER BY bouquet";
}

std::string wanted(const Input& input) {
    std::string content;
    for (const auto& line : input.lines) {
        content += fuzz::replace(fuzz::replace(line, "\r", ""), "\n", "") + "\n";
    }
    for (const auto& name : input.names) {
        const auto entry = referenceTo(input.type, name);
        if (std::find(input.lines.begin(), input.lines.end(), entry) != input.lines.end()) continue;
        content += entry + "\n";
    }
    return content;
}

std::string made(const Input& input) {
    RootFile file(input.type);
    for (const auto& line : input.lines) {
        file.addLine(line);
    }
    for (const auto& name : input.names) {
        file.addReference(name);
    }
    std::string content(file.room(), '\0');
    content.resize(file.write(content.data()));
    return content;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto input = parse({reinterpret_cast<const char*>(data), size});
    fuzz::expectEqual("the content", made(input), wanted(input));
    return 0;
}
