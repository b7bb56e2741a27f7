// Runs a fuzz target over the inputs that are kept: replay FOLDER...

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "target.hpp"

namespace {

std::vector<std::filesystem::path> filesIn(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.is_regular_file() && entry.path().filename() != ".gitattributes") files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

void run(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    // Should it end the process, this says where it was.
    std::cout << file.filename().string() << ": " << std::flush;
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    std::cout << bytes.size() << " bytes\n";
}

}  // namespace

int main(int argc, char** argv) {
    std::size_t count = 0;
    for (int index = 1; index < argc; ++index) {
        if (!std::filesystem::is_directory(argv[index])) {
            std::cerr << "replay: '" << argv[index] << "' is not a folder of inputs\n";
            return 2;
        }
        for (const auto& file : filesIn(argv[index])) {
            run(file);
            ++count;
        }
    }
    std::cout << count << " inputs\n";
    return count > 0 ? 0 : 1;
}
