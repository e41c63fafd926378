// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/orientation.h"

#include <cstring>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

constexpr std::ptrdiff_t kBlock = 32; ///< Texels a side: rows and columns of a block stay in the cache.

/// Where the texels of a result come from. All in bytes, rows counted from the top.
struct Walk {
    std::uint8_t const* first; ///< The top left one.
    std::ptrdiff_t right;      ///< From a texel to its right neighbour.
    std::ptrdiff_t down;       ///< From a texel to the one below.
};

Walk walk_through(Picture const& picture, std::ptrdiff_t texel, int orientation)
{
    std::ptrdiff_t const row = texel * picture.width;
    std::ptrdiff_t const last_column = row - texel;
    std::ptrdiff_t const top = row * (picture.height - 1);
    std::uint8_t const* const bytes = picture.bytes.data(); // of the bottom row
    switch (orientation) {
    case 2:
        return {bytes + top + last_column, -texel, -row};
    case 3:
        return {bytes + last_column, -texel, row};
    case 4:
        return {bytes, texel, row};
    case 5:
        return {bytes + top, -row, texel};
    case 6:
        return {bytes, row, texel};
    case 7:
        return {bytes + last_column, row, -texel};
    default:
        return {bytes + top + last_column, -row, -texel};
    }
}

template <std::size_t kTexel>
void copy_block(std::uint8_t const* from, std::uint8_t* to, std::ptrdiff_t right, std::size_t size,
                std::ptrdiff_t count)
{
    std::size_t const bytes = kTexel == 0 ? size : kTexel; // known to the compiler for the common ones
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        std::memcpy(to + x * static_cast<std::ptrdiff_t>(bytes), from + x * right, bytes);
    }
}

} // namespace

Picture oriented(Picture&& picture, int orientation)
{
    if (orientation < 2 || orientation > 8) {
        return std::move(picture);
    }
    bool const exchanged = orientation > 4;
    Picture result = make_picture(exchanged ? picture.height : picture.width,
                                  exchanged ? picture.width : picture.height, picture.channels, picture.type);
    result.kind = picture.kind;
    result.attributes = picture.attributes;
    std::size_t const size = static_cast<std::size_t>(picture.channels) * sample_size(picture.type);
    auto const texel = static_cast<std::ptrdiff_t>(size);
    Walk const walk = walk_through(picture, texel, orientation);
    auto* const copy = size == 1   ? copy_block<1>
                       : size == 3 ? copy_block<3>
                       : size == 4 ? copy_block<4>
                                   : copy_block<0>;
    for (std::ptrdiff_t top = 0; top < result.height; top += kBlock) {
        for (std::ptrdiff_t left = 0; left < result.width; left += kBlock) {
            std::ptrdiff_t const count = std::min<std::ptrdiff_t>(kBlock, result.width - left);
            for (std::ptrdiff_t y = top; y < std::min<std::ptrdiff_t>(top + kBlock, result.height); ++y) {
                std::ptrdiff_t const row = result.height - 1 - y;
                copy(walk.first + left * walk.right + y * walk.down,
                     result.bytes.data() + (row * result.width + left) * texel, walk.right, size, count);
            }
        }
    }
    return result;
}

} // namespace umbrixlib::toolkit
