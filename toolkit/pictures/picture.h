// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace umbrixlib::toolkit {

/// A picture of 8 bits a channel in memory. The first row is the bottom one, as in the library.
struct Picture {
    int width = 0;
    int height = 0;
    int channels = 0; ///< 3: red, green, blue; 4: and alpha.
    std::vector<std::uint8_t> bytes;

    std::size_t texels() const { return static_cast<std::size_t>(width) * static_cast<std::size_t>(height); }
    std::uint8_t* texel(std::size_t index) { return &bytes[index * static_cast<std::size_t>(channels)]; }
    std::uint8_t const* texel(std::size_t index) const
    {
        return &bytes[index * static_cast<std::size_t>(channels)];
    }
};

/// A black picture, or with four channels a black transparent one.
inline Picture make_picture(int width, int height, int channels)
{
    Picture picture{width, height, channels, {}};
    picture.bytes.resize(picture.texels() * static_cast<std::size_t>(channels));
    return picture;
}

/// @p source without its alpha.
inline Picture without_alpha(Picture const& source)
{
    Picture result = make_picture(source.width, source.height, 3);
    for (std::size_t i = 0; i < source.texels(); ++i) {
        for (std::size_t c = 0; c < 3; ++c) {
            result.texel(i)[c] = source.texel(i)[c];
        }
    }
    return result;
}

} // namespace umbrixlib::toolkit
