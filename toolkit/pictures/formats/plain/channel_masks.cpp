// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/plain/channel_masks.h"

#include <bit>

namespace umbrixlib::toolkit {

ChannelMasks::ChannelMasks(SourceFile const& source, int bits, std::vector<std::uint32_t> const& masks)
    : texel_size_(static_cast<std::size_t>(bits) / 8)
{
    for (std::uint32_t const mask : masks) {
        unsigned const shift = mask == 0 ? 0 : static_cast<unsigned>(std::countr_zero(mask));
        std::uint32_t const most = mask >> shift;
        if ((most & (most + 1)) != 0 || most > 65535 || std::bit_width(mask) > static_cast<unsigned>(bits)) {
            source.refuse_as_damaged();
        }
        if (most > 255) {
            type_ = SampleType::kUint16;
        }
        masks_.push_back({shift, most});
    }
}

template <typename Sample>
void ChannelMasks::unpack_into(std::span<std::uint8_t const> texels, std::span<Sample> row) const
{
    std::size_t at = 0;
    for (std::size_t i = 0; i < row.size(); at += texel_size_) {
        std::uint32_t texel = 0;
        for (std::size_t k = 0; k < texel_size_; ++k) {
            texel |= std::uint32_t{texels[at + k]} << 8 * k;
        }
        for (Mask const& mask : masks_) {
            row[i++] =
                mask.most == 0 ? Sample{0} : spread<Sample>(texel >> mask.shift & mask.most, mask.most);
        }
    }
}

void ChannelMasks::unpack(std::span<std::uint8_t const> texels, Picture& picture, int y) const
{
    if (type_ == SampleType::kUint8) {
        unpack_into(texels, row_from_top<std::uint8_t>(picture, y));
    } else {
        unpack_into(texels, row_from_top<std::uint16_t>(picture, y));
    }
}

} // namespace umbrixlib::toolkit
