// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/textures/texel_layout.h"

#include "toolkit/pictures/formats/plain/channel_masks.h"
#include "toolkit/pictures/formats/textures/vectors.h"

#include <algorithm>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

constexpr int kBlockSide = 4;

/// The texels of a block, as channels one beside the other, into the picture; those behind its edges are
/// lost.
template <typename Sample>
void put_block(std::span<Sample const> texels, int left, int top, Picture& picture)
{
    auto const channels = static_cast<std::size_t>(picture.channels);
    auto const columns = static_cast<std::size_t>(std::min(kBlockSide, picture.width - left));
    for (int y = 0; y < std::min(kBlockSide, picture.height - top); ++y) {
        auto const from = texels.subspan(static_cast<std::size_t>(y * kBlockSide) * channels);
        auto const to = row_from_top<Sample>(picture, top + y);
        std::copy_n(from.begin(), columns * channels,
                    to.begin() + static_cast<std::ptrdiff_t>(static_cast<std::size_t>(left) * channels));
    }
}

template <typename Sample>
std::vector<Sample> woven(std::array<Sample, 16> const& a, std::array<Sample, 16> const& b)
{
    std::vector<Sample> texels;
    for (std::size_t i = 0; i < a.size(); ++i) {
        texels.insert(texels.end(), {a[i], b[i]});
    }
    return texels;
}

void put_block(BlockForm form, std::span<std::uint8_t const> block, int left, int top, Picture& picture)
{
    switch (form) {
    case BlockForm::kBc4:
        return put_block<std::uint8_t>(channel_block(block), left, top, picture);
    case BlockForm::kBc4Signed:
        return put_block<float>(signed_channel_block(block), left, top, picture);
    case BlockForm::kBc5:
        return put_block<std::uint8_t>(woven(channel_block(block), channel_block(block.subspan(8))), left,
                                       top, picture);
    case BlockForm::kBc5Signed:
        return put_block<float>(woven(signed_channel_block(block), signed_channel_block(block.subspan(8))),
                                left, top, picture);
    default:
        return put_block<std::uint8_t>(colour_block(block, form), left, top, picture);
    }
}

Picture read_blocks(ByteReader& reader, TexelLayout const& layout)
{
    BlockForm const form = *layout.blocks;
    bool const is_signed = form == BlockForm::kBc4Signed || form == BlockForm::kBc5Signed;
    int const channels = form == BlockForm::kBc4 || form == BlockForm::kBc4Signed   ? 1
                         : form == BlockForm::kBc5 || form == BlockForm::kBc5Signed ? 2
                                                                                    : 4;
    auto const blocks = [](int side) { return (static_cast<std::size_t>(side) + 3) / 4; };
    std::size_t const size = block_size(form);
    auto data = reader.take(blocks(layout.width) * blocks(layout.height) * size);
    Picture picture = make_picture(layout.width, layout.height, channels,
                                   is_signed ? SampleType::kFloat : SampleType::kUint8);
    for (int y = 0; y < layout.height; y += kBlockSide) {
        for (int x = 0; x < layout.width; x += kBlockSide) {
            put_block(form, data.first(size), x, y, picture);
            data = data.subspan(size);
        }
    }
    return picture;
}

Picture read_masked(ByteReader& reader, TexelLayout const& layout)
{
    ChannelMasks const masks(reader.source(), layout.bits, layout.masks);
    std::size_t const packed = static_cast<std::size_t>(layout.width) * masks.texel_size();
    auto const height = static_cast<std::size_t>(layout.height);
    // Writers disagree on the pitch, but not if it makes the file as long as it is.
    bool const is_padded = layout.pitch > packed && reader.left() == layout.pitch * height;
    std::size_t const pitch = is_padded ? layout.pitch : packed;
    auto const data = reader.take(pitch * height);
    Picture picture = make_picture(layout.width, layout.height, masks.channels(), masks.type());
    for (int y = 0; y < layout.height; ++y) {
        masks.unpack(data.subspan(static_cast<std::size_t>(y) * pitch, packed), picture, y);
    }
    return picture;
}

Picture read_samples(ByteReader& reader, TexelLayout const& layout)
{
    std::size_t const row = static_cast<std::size_t>(layout.width) *
                            static_cast<std::size_t>(layout.channels) * sample_size(*layout.samples);
    auto const data = reader.take(row * static_cast<std::size_t>(layout.height));
    Picture picture = make_picture(layout.width, layout.height, layout.channels, *layout.samples);
    for (int y = 0; y < layout.height; ++y) {
        auto const from = data.subspan(static_cast<std::size_t>(y) * row, row);
        if (picture.type == SampleType::kFloat) {
            put_samples(from, ByteOrder::kLittle, row_from_top<std::uint32_t>(picture, y));
        } else {
            put_samples(from, ByteOrder::kLittle, row_from_top<std::uint16_t>(picture, y));
        }
    }
    return picture;
}

bool is_opaque(Picture const& picture)
{
    for (std::size_t i = 0; i < picture.texels(); ++i) {
        if (picture.texel(i)[3] != 255) {
            return false;
        }
    }
    return true;
}

/// Colours that were multiplied by their alpha, as they were before.
void divide_by_alpha(Picture& picture)
{
    for (std::size_t i = 0; i < picture.texels(); ++i) {
        std::uint8_t* const texel = picture.texel(i);
        for (std::size_t c = 0; c < 3 && texel[3] != 0; ++c) {
            texel[c] = static_cast<std::uint8_t>(std::min((texel[c] * 255 + texel[3] / 2) / texel[3], 255));
        }
    }
}

} // namespace

double TexelLayout::size() const
{
    auto const blocks_of = [](int side) { return (side + kBlockSide - 1) / kBlockSide; };
    if (blocks) {
        return static_cast<double>(blocks_of(width)) * blocks_of(height) *
               static_cast<double>(block_size(*blocks));
    }
    double const texel = samples ? channels * static_cast<double>(sample_size(*samples)) : bits / 8;
    return static_cast<double>(width) * height * texel;
}

Picture read_texels(ByteReader& reader, TexelLayout& layout)
{
    reader.source().check_length(layout.size());
    Picture picture = layout.blocks    ? read_blocks(reader, layout)
                      : layout.samples ? read_samples(reader, layout)
                                       : read_masked(reader, layout);
    for (std::size_t i = 0; layout.green_first && i < picture.texels(); ++i) {
        std::swap(picture.texel(i)[0], picture.texel(i)[1]);
    }
    if (layout.is_vectors) {
        picture = with_blue(picture);
        layout.notes.emplace_back(kBlueNote);
    }
    if (layout.alpha_is_red) {
        for (std::size_t i = 0; i < picture.texels(); ++i) {
            picture.texel(i)[0] = picture.texel(i)[3];
        }
        picture = without_alpha(picture);
    }
    if (layout.blocks == BlockForm::kBc1 && is_opaque(picture)) {
        picture = without_alpha(picture);
    }
    if (layout.premultiplied && picture.channels == 4 && picture.type == SampleType::kUint8) {
        divide_by_alpha(picture);
        layout.notes.emplace_back("its colours were divided by its alpha, as its form says");
    }
    return picture;
}

} // namespace umbrixlib::toolkit
