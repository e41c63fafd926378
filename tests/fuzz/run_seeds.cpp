// SPDX-License-Identifier: MIT
// What stands in for libFuzzer in all builds but that of scripts/fuzz.sh: runs a target on each of its seeds,
// and on changed copies of it, the same in each run.
//   NAME_fuzz COPIES FOLDER
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size);
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* count, char*** words);

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes content(std::filesystem::path const& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// A copy with one to four bytes changed, left out or put in, or cut off.
Bytes changed(Bytes bytes, std::mt19937& random)
{
    for (unsigned left = random() % 4 + 1; left > 0 && !bytes.empty(); --left) {
        auto const at = bytes.begin() + static_cast<std::ptrdiff_t>(random() % bytes.size());
        auto const byte = static_cast<std::uint8_t>(random());
        switch (random() % 8) {
        case 0:
            bytes.erase(at);
            break;
        case 1:
            bytes.insert(at, byte);
            break;
        case 2:
            bytes.erase(at, bytes.end());
            break;
        case 3:
            *at ^= static_cast<std::uint8_t>(1U << random() % 8);
            break;
        case 4:
            *at = random() % 2 == 0 ? 0 : 255;
            break;
        default:
            *at = byte;
        }
    }
    return bytes;
}

} // namespace

int main(int count, char** words)
{
    if (count != 3) {
        std::fprintf(stderr, "usage: %s COPIES FOLDER\n", words[0]);
        return 2;
    }
    if (LLVMFuzzerInitialize != nullptr) {
        LLVMFuzzerInitialize(&count, &words);
    }
    std::vector<std::filesystem::path> seeds;
    for (auto const& each : std::filesystem::directory_iterator(words[2])) {
        seeds.push_back(each.path());
    }
    std::ranges::sort(seeds);
    int const copies = std::atoi(words[1]);
    std::mt19937 random; // its numbers are the same everywhere
    for (auto const& seed : seeds) {
        Bytes const bytes = content(seed);
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
        for (int i = 0; i < copies; ++i) {
            Bytes const copy = changed(bytes, random);
            LLVMFuzzerTestOneInput(copy.data(), copy.size());
        }
    }
    std::printf("%zu seeds, each with %d changed copies\n", seeds.size(), copies);
    return seeds.empty() ? 1 : 0;
}
