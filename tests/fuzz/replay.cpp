// Feeds a target every file of the folders named on the command line, once each.

#include "fuzz.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

namespace fs = std::filesystem;

int main(int argc, char* argv[])
{
    std::set<fs::path> files;
    for (const std::string folder : std::span(argv, static_cast<size_t>(argc)).subspan(1)) {
        for (const fs::directory_entry& entry : fs::directory_iterator(folder))
            files.insert(entry.path());
    }
    for (const fs::path& file : files) {
        fprintf(stderr, "%s\n", file.c_str()); // the last one named is the one that broke
        std::ifstream stream(file, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    }
    fprintf(stderr, "%zu files\n", files.size());
    return files.empty() ? 1 : 0;
}
