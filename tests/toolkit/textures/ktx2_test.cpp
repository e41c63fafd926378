// SPDX-License-Identifier: MIT
/// KTX2 files, field by field as the format has them.
#include "toolkit/textures/ktx2_layout.h"

#include <array>
#include <gtest/gtest.h>
#include <numeric>
#include <string>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

using FileStart = std::vector<std::uint8_t>;

std::uint64_t number_at(FileStart const& bytes, std::size_t at, std::size_t size)
{
    std::uint64_t number = 0;
    for (std::size_t i = size; i-- > 0;) {
        number = number << 8U | bytes.at(at + i);
    }
    return number;
}

unsigned u32(FileStart const& bytes, std::size_t at)
{
    return static_cast<unsigned>(number_at(bytes, at, 4));
}

Texture texture_of(TextureFormat format, int channels, int width, int height)
{
    return *make_texture(make_picture(width, height, channels), format, kAllLevels);
}

/// A form in the numbers of Vulkan and of the Khronos Data Format.
struct KtxForm {
    TextureFormat format;
    int channels;
    unsigned vulkan;
    unsigned type_size;
    unsigned model;
    unsigned last_of_side;
    std::vector<std::array<unsigned, 5>> samples; ///< Bit, bits, channel and qualifiers, least, most.
};

constexpr unsigned kFull = 0xffffffffU;
constexpr unsigned kLeastFloat = 0xbf800000U;
constexpr unsigned kMostFloat = 0x3f800000U;

std::vector<KtxForm> ktx_forms()
{
    using enum TextureFormat;
    return {
        {kBc4, 1, 139, 1, 131, 3, {{0, 64, 0, 0, kFull}}},
        {kBc5, 3, 141, 1, 132, 3, {{0, 64, 0, 0, kFull}, {64, 64, 1, 0, kFull}}},
        {kBc7, 3, 145, 1, 134, 3, {{0, 128, 0, 0, kFull}}},
        {k8, 1, 9, 1, 1, 0, {{0, 8, 0, 0, 255}}},
        {k8, 4, 37, 1, 1, 0, {{0, 8, 0, 0, 255}, {8, 8, 1, 0, 255}, {16, 8, 2, 0, 255}, {24, 8, 15, 0, 255}}},
        {k16, 1, 70, 2, 1, 0, {{0, 16, 0, 0, 65535}}},
        {k16,
         3,
         91,
         2,
         1,
         0,
         {{0, 16, 0, 0, 65535}, {16, 16, 1, 0, 65535}, {32, 16, 2, 0, 65535}, {48, 16, 15, 0, 65535}}},
        {kHalf, 1, 76, 2, 1, 0, {{0, 16, 0xc0, kLeastFloat, kMostFloat}}},
        {kHalf,
         4,
         97,
         2,
         1,
         0,
         {{0, 16, 0xc0, kLeastFloat, kMostFloat},
          {16, 16, 0xc1, kLeastFloat, kMostFloat},
          {32, 16, 0xc2, kLeastFloat, kMostFloat},
          {48, 16, 0xcf, kLeastFloat, kMostFloat}}}};
}

TEST(Ktx2, HasTheFieldsOfItsHeader)
{
    for (KtxForm const& form : ktx_forms()) {
        Texture const texture = texture_of(form.format, form.channels, 20, 9);
        FileStart const start = ktx2_layout(texture).start;
        std::array<std::uint8_t, 12> const identifier{0xab, 0x4b, 0x54, 0x58, 0x20, 0x32,
                                                      0x30, 0xbb, 0x0d, 0x0a, 0x1a, 0x0a};
        EXPECT_TRUE(std::equal(identifier.begin(), identifier.end(), start.begin()));
        std::vector<unsigned> fields;
        for (std::size_t at = 12; at < 48; at += 4) {
            fields.push_back(u32(start, at));
        }
        // Format, size of a sample, width, height, depth, layers, faces, levels, supercompression.
        EXPECT_EQ(fields, (std::vector<unsigned>{form.vulkan, form.type_size, 20, 9, 0, 0, 1, 5, 0}))
            << texture.form.name;
        EXPECT_EQ(u32(start, 48), 80U + 5 * 24); // descriptor
        EXPECT_EQ(u32(start, 52), 28U + 16 * form.samples.size());
        EXPECT_EQ(u32(start, 56), u32(start, 48) + u32(start, 52)); // keys
        EXPECT_EQ(u32(start, 56) + u32(start, 60), start.size());
        EXPECT_EQ(number_at(start, 64, 8), 0U); // no global data
        EXPECT_EQ(number_at(start, 72, 8), 0U);
    }
}

TEST(Ktx2, DescribesItsFormat)
{
    for (KtxForm const& form : ktx_forms()) {
        Texture const texture = texture_of(form.format, form.channels, 3, 3);
        FileStart const start = ktx2_layout(texture).start;
        std::size_t const at = u32(start, 48);
        auto const size = static_cast<unsigned>(24 + 16 * form.samples.size());
        EXPECT_EQ(u32(start, at), 4 + size);
        EXPECT_EQ(u32(start, at + 4), 0U); // the basic descriptor of Khronos
        EXPECT_EQ(number_at(start, at + 8, 2), 2U);
        EXPECT_EQ(number_at(start, at + 10, 2), size);
        EXPECT_EQ(start[at + 12], form.model);
        EXPECT_EQ(start[at + 13], 0U); // no primaries
        EXPECT_EQ(start[at + 14], 1U); // linear
        EXPECT_EQ(start[at + 15], 0U); // alpha is not multiplied in
        EXPECT_EQ(u32(start, at + 16), form.last_of_side | form.last_of_side << 8U);
        EXPECT_EQ(number_at(start, at + 20, 8), texture.form.block_size);
        for (std::size_t i = 0; i < form.samples.size(); ++i) {
            std::size_t const sample = at + 28 + 16 * i;
            auto const& [bit, bits, channel, least, most] = form.samples[i];
            EXPECT_EQ(number_at(start, sample, 2), bit) << texture.form.name;
            EXPECT_EQ(start[sample + 2], bits - 1);
            EXPECT_EQ(start[sample + 3], channel);
            EXPECT_EQ(u32(start, sample + 4), 0U); // place in the block
            EXPECT_EQ(u32(start, sample + 8), least);
            EXPECT_EQ(u32(start, sample + 12), most);
        }
    }
}

TEST(Ktx2, NamesItsWriterAndTheTopRow)
{
    FileStart const start = ktx2_layout(texture_of(TextureFormat::k8, 1, 2, 2)).start;
    std::size_t at = u32(start, 56);
    std::vector<std::string> entries;
    while (at < start.size()) {
        std::size_t const size = u32(start, at);
        entries.emplace_back(start.begin() + static_cast<std::ptrdiff_t>(at + 4),
                             start.begin() + static_cast<std::ptrdiff_t>(at + 4 + size));
        at += 4 + (size + 3) / 4 * 4;
    }
    EXPECT_EQ(at, start.size());
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0], std::string("KTXorientation\0rd\0", 18));
    EXPECT_EQ(entries[1].rfind(std::string("KTXwriter\0UmbrixLib ", 20), 0), 0U);
    EXPECT_EQ(entries[1].back(), '\0');
}

TEST(Ktx2, AlignsItsLevelsFromTheSmallestOn)
{
    for (KtxForm const& form : ktx_forms()) {
        Texture const texture = texture_of(form.format, form.channels, 37, 11);
        Ktx2Layout const layout = ktx2_layout(texture);
        std::size_t const step = std::lcm(std::size_t{4}, texture.form.block_size);
        std::size_t end = layout.start.size();
        for (std::size_t i = texture.levels.size(); i-- > 0;) {
            EXPECT_EQ(layout.levels[i] % step, 0U) << texture.form.name;
            EXPECT_GE(layout.levels[i], end);
            EXPECT_LT(layout.levels[i], end + step);
            end = layout.levels[i] + texture.levels[i].size();
            std::size_t const entry = 80 + 24 * i;
            EXPECT_EQ(number_at(layout.start, entry, 8), layout.levels[i]);
            EXPECT_EQ(number_at(layout.start, entry + 8, 8), texture.levels[i].size());
            EXPECT_EQ(number_at(layout.start, entry + 16, 8), texture.levels[i].size());
        }
    }
}

} // namespace
} // namespace umbrixlib::test
