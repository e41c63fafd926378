// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The depths and sizes of pictures that everything which takes image files is tried with, and what a road
/// from bytes to bytes makes of them.

#include <algorithm>
#include <cstddef>
#include <vector>

namespace umbrixlib::test {

/// Bytes a pixel of grey, grey and alpha, RGB and RGBA pictures, in 8 bits, 16 bits and floats.
inline constexpr int kDepths[] = {1, 2, 3, 4, 6, 8, 12, 16};

struct PictureSize {
    int width, height;

    std::size_t texels() const { return static_cast<std::size_t>(width) * static_cast<std::size_t>(height); }
};

/// One texel, single lines, more than one of both, and nothing at all.
inline constexpr PictureSize kPictureSizes[] = {{1, 1}, {1, 7}, {7, 1}, {5, 3},
                                                {2, 2}, {0, 0}, {0, 4}, {4, 0}};

/// Bytes a texel that a single-file pipeline fetches from DevIL and hands back to it.
inline std::size_t fetched_channels(int depth)
{
    return depth < 4 ? 3 : 4;
}

/// A value of 0..1 as a byte, beyond it 0 or 255.
inline unsigned char picture_byte(float value)
{
    return static_cast<unsigned char>(static_cast<double>(std::clamp(value, 0.0f, 1.0f)) * 255.0);
}

/// What comes of @p fetched bytes when texels lie @p depth bytes apart: of each in its order @p of makes
/// four bytes from those that stand there, and three or four of them are put back in the place.
template <typename Of>
std::vector<unsigned char> through_texels(std::vector<unsigned char> fetched, PictureSize size, int depth,
                                          Of&& of)
{
    std::size_t const channels = fetched_channels(depth);
    auto const distance = static_cast<std::size_t>(depth);
    fetched.resize(std::max<std::size_t>(size.texels(), 1) * std::max<std::size_t>(distance, 4));
    std::vector<unsigned char> bytes = fetched;
    for (std::size_t i = 0; i < size.texels(); ++i) {
        auto const texel = of(fetched.data() + i * distance);
        std::copy_n(texel.begin(), channels, bytes.begin() + static_cast<std::ptrdiff_t>(i * distance));
    }
    bytes.resize(size.texels() * channels);
    return bytes;
}

} // namespace umbrixlib::test
