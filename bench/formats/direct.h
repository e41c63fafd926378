// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Pictures through the libraries of their formats alone, as a program would that knows what it reads and
/// writes. Rows from the top, samples in the machine's order. A fault ends the program.

#include <cstdint>
#include <string>
#include <vector>

namespace umbrixlib::bench {

struct DirectPicture {
    int width = 0;
    int height = 0;
    int channels = 0; ///< 1 or 3.
    std::vector<std::uint8_t> bytes;
};

/// Samples of 16 bits; level 6 and a filter for each row, as libpng has them unless told otherwise.
void write_png_directly(std::string const& file, DirectPicture const& picture);
DirectPicture read_png_directly(std::string const& file);

/// @param bits        16, or 32 of floats.
/// @param compression As libtiff counts them; with a predictor.
void write_tiff_directly(std::string const& file, DirectPicture const& picture, int bits, int compression);
DirectPicture read_tiff_directly(std::string const& file);

/// @param bits        16 of a half, or 32.
/// @param compression As OpenEXRCore counts them.
void write_exr_directly(std::string const& file, DirectPicture const& picture, int bits, int compression);
DirectPicture read_exr_directly(std::string const& file);

} // namespace umbrixlib::bench
