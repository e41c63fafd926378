// SPDX-License-Identifier: MIT
// Any bytes as a picture: the same picture each time, or the same sentence that tells why not. The first byte
// chooses the name, which tells the formats without a signature.
#include "demand.h"
#include "toolkit/base/failure.h"
#include "toolkit/pictures/decoded_image.h"

#include <array>
#include <fstream>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using umbrixlib::fuzz::demand;
using namespace umbrixlib::toolkit;

constexpr double kMostTexels = 1 << 20;
constexpr std::array<char const*, 7> kEndings{"", ".tga", ".r16", ".r32", ".pix", ".dib", ".cur"};

/// Files in memory, where the machine has them.
fs::path file_called(std::size_t ending)
{
    static fs::path const folder = fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path();
    return folder / ("umbrix_fuzz_" + std::to_string(getpid()) + kEndings[ending]);
}

struct Outcome {
    Picture picture;
    std::string complaint;
};

Outcome outcome(fs::path const& file)
{
    try {
        DecodedImage const image(file, "input", kMostTexels);
        return {image.to_picture(image.has_alpha()), ""};
    } catch (Failure const& failure) {
        return {{}, failure.what()};
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    fs::path const file = file_called(bytes[0] % kEndings.size());
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<char const*>(bytes + 1), static_cast<std::streamsize>(size - 1));
    Outcome const first = outcome(file);
    Outcome const second = outcome(file);
    fs::remove(file);
    demand(first.picture.bytes == second.picture.bytes, "a file is one picture");
    demand(first.complaint == second.complaint, "a file has one complaint");
    demand(first.complaint.find('\n') == std::string::npos, "a complaint is one line");
    demand(first.complaint.empty() != first.picture.bytes.empty(), "a file is a picture or has a complaint");
    return 0;
}
