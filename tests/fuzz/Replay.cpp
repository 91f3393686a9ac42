// Feeds a fuzz target the files named, and those of the folders named, in the order of their names. Ends with how many
// there were, and badly when there was none.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <vector>

#include "Target.h"

namespace {

namespace fs = std::filesystem;

std::set<fs::path> FilesOf(const fs::path& path) {
    if (!fs::is_directory(path)) {
        return {path};
    }
    return {fs::directory_iterator(path), fs::directory_iterator()};
}

void Replay(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::vector<char> read{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (!stream.good() && !stream.eof()) {
        (void)std::fprintf(stderr, "%s cannot be read\n", file.c_str());
        std::exit(2);
    }
    (void)std::fprintf(stderr, "%s\n", file.c_str());
    // Exactly as large as the input, so that a step beyond its end is seen.
    const std::vector<std::uint8_t> input(read.begin(), read.end());
    (void)LLVMFuzzerTestOneInput(input.data(), input.size());
}

} // namespace

int main(int argc, char** argv) {
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        for (const fs::path& file : FilesOf(argv[i])) {
            Replay(file);
            ++count;
        }
    }
    (void)std::fprintf(stderr, "%zu inputs\n", count);
    return count > 0 ? 0 : 2;
}
