// The name of a user bouquet in any line of a root file, and whether it is one.

#include "text/root_line.hpp"

#include "python_text.hpp"
#include "target.hpp"

namespace {

/// line[line.find(quote) + 1 : line.find(quote, line.find(quote) + 1)]
std::string between(const std::string& line, const std::string& quote) {
    const long opening = fuzz::find(line, quote);
    return fuzz::slice(line, opening + 1, fuzz::find(line, quote, opening + 1));
}

/// A line without double quotes that is no bare name of a user bouquet is asked for single ones too.
std::string wanted(const std::string& line) {
    auto name = between(line, "\"");
    const bool isBare = fuzz::find(line, "\"") == -1;
    if (name.empty() || (isBare && !fuzz::startsWith(name, "userbouquet"))) name = between(line, "'");
    return name;
}

const char* yesOrNo(bool value) {
    return value ? "yes" : "no";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string line(reinterpret_cast<const char*>(data), size);
    const auto name = wanted(line);
    fuzz::expectEqual("the name", std::string(morvesk::text::quotedName(line)), name);
    for (const char* suffix : {".tv", ".radio"}) {
        fuzz::expectEqual(std::string("whether it is a bouquet") + suffix,
                          yesOrNo(morvesk::text::namesUserBouquet(name, suffix)),
                          yesOrNo(fuzz::startsWith(name, "userbouquet") && fuzz::endsWith(name, suffix)));
    }
    return 0;
}
