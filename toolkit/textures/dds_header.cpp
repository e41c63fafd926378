// SPDX-License-Identifier: MIT
#include "toolkit/textures/dds_header.h"

#include "toolkit/pictures/formats/encoders/byte_writer.h"

namespace umbrixlib::toolkit {

namespace {

// Of the header: which of its fields count.
constexpr unsigned kCapsHeightWidthPixelFormat = 0x1007;
constexpr unsigned kRowSizeCounts = 0x8;
constexpr unsigned kLevelsCount = 0x20000;
constexpr unsigned kLevelSizeCounts = 0x80000;

// Of what is in the file.
constexpr unsigned kIsTexture = 0x1000;
constexpr unsigned kHasMipmaps = 0x400008; // more than one surface, and these are levels

constexpr unsigned kHasCode = 0x4;
constexpr unsigned kIs2d = 3; // D3D10_RESOURCE_DIMENSION_TEXTURE2D

} // namespace

std::vector<std::uint8_t> dds_header(Texture const& texture)
{
    auto const levels = static_cast<unsigned>(texture.levels.size());
    bool const is_packed = texture.form.block_side > 1;
    auto const size =
        static_cast<unsigned>(is_packed ? texture.levels.front().size()
                                        : static_cast<std::size_t>(texture.width) * texture.form.block_size);
    ByteWriter writer;
    writer.text("DDS ").u32(124);
    writer.u32(kCapsHeightWidthPixelFormat | (is_packed ? kLevelSizeCounts : kRowSizeCounts) |
               (levels > 1 ? kLevelsCount : 0));
    writer.u32(static_cast<unsigned>(texture.height)).u32(static_cast<unsigned>(texture.width)).u32(size);
    writer.u32(0).u32(levels).fill(76); // no depth; 11 words are reserved
    writer.u32(32).u32(kHasCode).text("DX10").fill(108);
    writer.u32(kIsTexture | (levels > 1 ? kHasMipmaps : 0)).fill(128);
    writer.u32(texture.form.dxgi).u32(kIs2d).u32(0).u32(1).u32(0); // one picture, an alpha as it is
    return {writer.bytes().begin(), writer.bytes().end()};
}

} // namespace umbrixlib::toolkit
