// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace umbrixlib::toolkit {

inline constexpr int kAllLevels = 32; ///< No texture has more.

/// How the texels of a texture are stored. The first ones pack blocks of 4 x 4 texels.
enum class TextureFormat {
    kBc4,  ///< One channel, half a byte a texel.
    kBc5,  ///< x and y of normals, a byte a texel.
    kBc7,  ///< Red, green, blue and alpha, a byte a texel.
    k8,    ///< Whole numbers of 8 bits.
    k16,   ///< Of 16 bits.
    kHalf, ///< Floats of 16 bits; normals are -1 to 1.
};

/// What options call the formats, in their order.
inline constexpr char const* kTextureFormatNames[] = {"bc4", "bc5", "bc7", "8", "16", "half"};

std::optional<TextureFormat> texture_format_called(std::string_view name);

/// Samples of linear data in blocks of the same size, a texel each where nothing is packed.
struct TextureForm {
    TextureFormat format;
    int channels;           ///< That are stored.
    int block_side;         ///< In texels.
    std::size_t block_size; ///< In bytes.
    unsigned dxgi;          ///< Direct3D's number, DXGI_FORMAT.
    char const* name;       ///< "BC4", "8-bit RGBA".

    /// Blocks along a side of @p texels; what is left over takes one more.
    constexpr int blocks(int texels) const { return (texels - 1) / block_side + 1; }
};

/// The form in which @p format stores a picture of @p channels. Graphics processors have none of three.
TextureForm const& texture_form(TextureFormat format, int channels);

} // namespace umbrixlib::toolkit
