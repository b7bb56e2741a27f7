// The address of the download area, for any first line of the feed configuration.

#include "text/feed_address.hpp"

#include "python_text.hpp"
#include "target.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string line(reinterpret_cast<const char*>(data), size);
    const auto address = fuzz::strip(fuzz::strip(line, "src/gz Qel-all "));
    fuzz::expectEqual("the address", morvesk::text::downloadArea(line),
                      fuzz::replace(address, "all", "settings_download/"));
    return 0;
}
