// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace umbrixlib::examples {

/// Pixels of 8 bits a channel, one (grey) or four (red, green, blue, alpha); row 0 at the bottom.
struct Pixels {
    int width = 0;
    int height = 0;
    int channels = 0;
    std::vector<std::uint8_t> bytes;
};

/// Writes @p pixels, replacing the file. Throws std::runtime_error with the file and the reason.
void write_png(std::filesystem::path const& file, Pixels const& pixels);

/// Reads a file that write_png() made. Throws std::runtime_error with the file and the reason.
Pixels read_png(std::filesystem::path const& file);

} // namespace umbrixlib::examples
