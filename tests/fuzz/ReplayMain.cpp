// The main function of a fuzz target in an ordinary build: runs the target on every file of
// one or more folders.
#include "tests/fuzz/Require.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

namespace {

constexpr std::size_t fewestSeeds = 30;

std::vector<std::uint8_t> contentOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc < 2) {
        std::cerr << "usage: " << argv[0] << " FOLDER...\n";
        return 2;
    }
    std::vector<std::filesystem::path> seeds;
    for (int folder = 1; folder < argc; ++folder) {
        for (const auto& entry : std::filesystem::directory_iterator(argv[folder])) {
            seeds.push_back(entry.path());
        }
    }
    std::sort(seeds.begin(), seeds.end());
    fuzz::require(seeds.size() >= fewestSeeds, "a target has at least thirty seeds");
    for (const std::filesystem::path& seed : seeds) {
        std::cout << seed.filename().string()
                  << std::endl; // printed before the run, which may end the process
        const std::vector<std::uint8_t> content = contentOf(seed);
        fuzz::require(content.size() <= fuzz::longestInput, "a seed has at most 512 bytes");
        LLVMFuzzerTestOneInput(content.data(), content.size());
    }
    return 0;
}
