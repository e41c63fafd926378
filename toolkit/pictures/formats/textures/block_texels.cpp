// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/textures/block_texels.h"

#include <algorithm>

namespace umbrixlib::toolkit {

namespace {

/// @p bytes as a number, the low byte first.
std::uint64_t number_of(std::span<std::uint8_t const> bytes)
{
    std::uint64_t number = 0;
    for (std::size_t i = bytes.size(); i-- > 0;) {
        number = number << 8U | bytes[i];
    }
    return number;
}

std::uint8_t rounded(unsigned numerator, unsigned denominator)
{
    return static_cast<std::uint8_t>((numerator * 255 + denominator / 2) / denominator);
}

using Rgba = std::array<std::uint8_t, 4>;

/// The colour @p part / @p parts of the way from @p a to @p b, which have 5, 6 and 5 bits.
Rgba colour_between(unsigned a, unsigned b, unsigned part, unsigned parts)
{
    auto const channel = [&](unsigned shift, unsigned most) {
        return rounded((a >> shift & most) * (parts - part) + (b >> shift & most) * part, most * parts);
    };
    return {channel(11, 31), channel(5, 63), channel(0, 31), 255};
}

void put_colours(std::span<std::uint8_t const> block, bool only_four, std::array<std::uint8_t, 64>& texels)
{
    auto const a = static_cast<unsigned>(number_of(block.first(2)));
    auto const b = static_cast<unsigned>(number_of(block.subspan(2, 2)));
    std::array<Rgba, 4> colours{colour_between(a, b, 0, 1), colour_between(a, b, 1, 1)};
    if (only_four || a > b) {
        colours[2] = colour_between(a, b, 1, 3);
        colours[3] = colour_between(a, b, 2, 3);
    } else {
        colours[2] = colour_between(a, b, 1, 2); // the fourth is transparent black
    }
    std::uint64_t choices = number_of(block.subspan(4, 4));
    for (std::size_t i = 0; i < 16; ++i, choices >>= 2U) {
        std::copy_n(colours[choices & 3U].begin(), 4, &texels[4 * i]);
    }
}

/// The six or four values between two, and their place among eight.
template <typename Value, typename Between>
std::array<Value, 8> ladder(Value first, Value second, Value lowest, Value highest, Between&& between)
{
    std::array<Value, 8> steps{first, second};
    unsigned const parts = first > second ? 7 : 5;
    for (unsigned i = 1; i < parts; ++i) {
        steps[i + 1] = between(i, parts);
    }
    if (parts == 5) {
        steps[6] = lowest;
        steps[7] = highest;
    }
    return steps;
}

template <typename Value>
std::array<Value, 16> chosen(std::array<Value, 8> const& steps, std::span<std::uint8_t const> block)
{
    std::array<Value, 16> values{};
    std::uint64_t choices = number_of(block.subspan(2, 6));
    for (Value& value : values) {
        value = steps[choices & 7U];
        choices >>= 3U;
    }
    return values;
}

} // namespace

std::array<std::uint8_t, 16> channel_block(std::span<std::uint8_t const> block)
{
    unsigned const a = block[0];
    unsigned const b = block[1];
    auto const between = [&](unsigned part, unsigned parts) {
        return rounded(a * (parts - part) + b * part, 255 * parts);
    };
    return chosen(ladder<std::uint8_t>(block[0], block[1], 0, 255, between), block);
}

std::array<float, 16> signed_channel_block(std::span<std::uint8_t const> block)
{
    // -128 stands for -1, too.
    auto const value = [](std::uint8_t byte) {
        return static_cast<float>(std::max<int>(static_cast<std::int8_t>(byte), -127)) / 127.0f;
    };
    float const a = value(block[0]);
    float const b = value(block[1]);
    auto const between = [&](unsigned part, unsigned parts) {
        return (a * static_cast<float>(parts - part) + b * static_cast<float>(part)) /
               static_cast<float>(parts);
    };
    return chosen(ladder<float>(a, b, -1.0f, 1.0f, between), block);
}

std::array<std::uint8_t, 64> colour_block(std::span<std::uint8_t const> block, BlockForm form)
{
    std::array<std::uint8_t, 64> texels{};
    bool const is_bc1 = form == BlockForm::kBc1;
    put_colours(is_bc1 ? block : block.subspan(8), !is_bc1, texels);
    if (form == BlockForm::kBc2) {
        std::uint64_t alphas = number_of(block.first(8));
        for (std::size_t i = 0; i < 16; ++i, alphas >>= 4U) {
            texels[4 * i + 3] = static_cast<std::uint8_t>((alphas & 15U) * 17);
        }
    } else if (form == BlockForm::kBc3) {
        auto const alphas = channel_block(block.first(8));
        for (std::size_t i = 0; i < 16; ++i) {
            texels[4 * i + 3] = alphas[i];
        }
    }
    return texels;
}

} // namespace umbrixlib::toolkit
