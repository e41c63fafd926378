// SPDX-License-Identifier: MIT
#include "toolkit/textures/ktx2_layout.h"

#include "toolkit/pictures/formats/encoders/byte_writer.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <string_view>

namespace umbrixlib::toolkit {

namespace {

constexpr std::array<std::uint8_t, 12> kIdentifier{0xab, 'K',  'T',  'X',  ' ',  '2',
                                                   '0',  0xbb, '\r', '\n', 0x1a, '\n'};
constexpr std::size_t kKtx2HeaderSize = 80;
constexpr std::size_t kLevelSize = 24; ///< Of an entry in the index.

// Of a data format descriptor.
constexpr unsigned kDescriptorVersion = 2;
constexpr unsigned kLinear = 1; // KHR_DF_TRANSFER_LINEAR
constexpr unsigned kIsSignedSample = 0x40;
constexpr unsigned kIsFloatSample = 0x80;
constexpr unsigned kAlphaSample = 15; // KHR_DF_CHANNEL_RGBSDA_ALPHA
constexpr unsigned kMinusOneAsFloat = 0xbf800000;
constexpr unsigned kOneAsFloat = 0x3f800000;

/// What a form is called elsewhere than in Direct3D.
struct FormNumbers {
    unsigned dxgi;
    unsigned vulkan; ///< VkFormat.
    unsigned model;  ///< khr_df_model_e.
};

constexpr FormNumbers kNumbers[] = {{80, 139, 131}, {83, 141, 132}, {98, 145, 134}, {61, 9, 1}, {28, 37, 1},
                                    {56, 70, 1},    {11, 91, 1},    {54, 76, 1},    {10, 97, 1}};

FormNumbers const& numbers_of(TextureForm const& form)
{
    return *std::ranges::find(kNumbers, form.dxgi, &FormNumbers::dxgi);
}

void append_u64(ByteWriter& to, std::size_t number)
{
    to.u32(static_cast<unsigned>(number & 0xffffffffU)).u32(static_cast<unsigned>(number >> 32U));
}

/// Bits of a block that belong together.
void append_sample(ByteWriter& to, TextureForm const& form, std::size_t bits, unsigned number)
{
    bool const is_float = form.format == TextureFormat::kHalf;
    unsigned const channel = form.block_side == 1 && number == 3 ? kAlphaSample : number;
    to.u16(static_cast<unsigned>(bits * number)).u8(static_cast<unsigned>(bits - 1));
    to.u8(channel | (is_float ? kIsSignedSample | kIsFloatSample : 0)).u32(0);
    unsigned const most = bits < 32 ? (1U << bits) - 1 : 0xffffffffU;
    to.u32(is_float ? kMinusOneAsFloat : 0).u32(is_float ? kOneAsFloat : most);
}

std::vector<std::uint8_t> format_descriptor(TextureForm const& form)
{
    // BC7 packs all channels together.
    auto const samples = form.format == TextureFormat::kBc7 ? 1U : static_cast<unsigned>(form.channels);
    unsigned const size = 24 + 16 * samples;
    auto const last_of_side = static_cast<unsigned>(form.block_side - 1);
    ByteWriter writer;
    writer.u32(4 + size).u32(0).u16(kDescriptorVersion).u16(size);
    writer.u8(numbers_of(form).model).u8(0).u8(kLinear).u8(0); // without primaries; alpha is as it is
    writer.u8(last_of_side).u8(last_of_side).u8(0).u8(0);
    writer.u32(static_cast<unsigned>(form.block_size)).u32(0); // one plane
    for (unsigned i = 0; i < samples; ++i) {
        append_sample(writer, form, 8 * form.block_size / samples, i);
    }
    return {writer.bytes().begin(), writer.bytes().end()};
}

void append_key(ByteWriter& to, std::string_view key, std::string_view value)
{
    to.u32(static_cast<unsigned>(key.size() + value.size() + 2));
    to.text(key).u8(0).text(value).u8(0);
    to.fill((to.bytes().size() + 3) / 4 * 4);
}

/// In the order of the keys' letters.
std::vector<std::uint8_t> keys_and_values()
{
    ByteWriter writer;
    append_key(writer, "KTXorientation", "rd"); // to the right and down
    append_key(writer, "KTXwriter", "UmbrixLib " UMBRIX_VERSION);
    return {writer.bytes().begin(), writer.bytes().end()};
}

} // namespace

Ktx2Layout ktx2_layout(Texture const& texture)
{
    std::size_t const count = texture.levels.size();
    auto const descriptor = format_descriptor(texture.form);
    auto const keys = keys_and_values();
    std::size_t const descriptor_at = kKtx2HeaderSize + kLevelSize * count;
    std::size_t const keys_at = descriptor_at + descriptor.size();
    std::size_t const step = std::lcm(std::size_t{4}, texture.form.block_size);
    std::size_t end = keys_at + keys.size();
    Ktx2Layout layout;
    layout.levels.resize(count);
    for (std::size_t i = count; i-- > 0;) {
        layout.levels[i] = (end + step - 1) / step * step;
        end = layout.levels[i] + texture.levels[i].size();
    }

    ByteWriter writer;
    writer.samples(std::span<std::uint8_t const>(kIdentifier)).u32(numbers_of(texture.form).vulkan);
    bool const is_packed = texture.form.block_side > 1;
    auto const channels = static_cast<std::size_t>(texture.form.channels);
    writer.u32(is_packed ? 1 : static_cast<unsigned>(texture.form.block_size / channels));
    writer.u32(static_cast<unsigned>(texture.width)).u32(static_cast<unsigned>(texture.height));
    writer.u32(0).u32(0).u32(1).u32(static_cast<unsigned>(count)).u32(0); // one face, no supercompression
    writer.u32(static_cast<unsigned>(descriptor_at)).u32(static_cast<unsigned>(descriptor.size()));
    writer.u32(static_cast<unsigned>(keys_at)).u32(static_cast<unsigned>(keys.size()));
    append_u64(writer, 0);
    append_u64(writer, 0);
    for (std::size_t i = 0; i < count; ++i) {
        append_u64(writer, layout.levels[i]);
        append_u64(writer, texture.levels[i].size());
        append_u64(writer, texture.levels[i].size());
    }
    writer.samples(std::span<std::uint8_t const>(descriptor)).samples(std::span<std::uint8_t const>(keys));
    layout.start.assign(writer.bytes().begin(), writer.bytes().end());
    return layout;
}

} // namespace umbrixlib::toolkit
