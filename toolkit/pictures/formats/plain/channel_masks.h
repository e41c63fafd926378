// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/formats/plain/rows.h"

namespace umbrixlib::toolkit {

/// Texels of 8 to 32 bits that are one number each, with channels that are some of its bits.
class ChannelMasks {
public:
    /// @param bits  8, 16, 24 or 32 a texel.
    /// @param masks One a channel; a channel without bits is 0.
    /// A Failure if a mask has gaps, bits that a texel has not, or more than 16.
    ChannelMasks(SourceFile const& source, int bits, std::vector<std::uint32_t> const& masks);

    int channels() const { return static_cast<int>(masks_.size()); }
    std::size_t texel_size() const { return texel_size_; }

    /// That of the channel with the most bits.
    SampleType type() const { return type_; }

    /// A row of texels, the low bytes first, into one of a picture of these channels and this type.
    void unpack(std::span<std::uint8_t const> texels, Picture& picture, int y) const;

private:
    struct Mask {
        unsigned shift = 0;
        std::uint32_t most = 0; ///< 0: the channel has no bits.
    };

    template <typename Sample>
    void unpack_into(std::span<std::uint8_t const> texels, std::span<Sample> row) const;

    std::size_t texel_size_;
    std::vector<Mask> masks_;
    SampleType type_ = SampleType::kUint8;
};

} // namespace umbrixlib::toolkit
