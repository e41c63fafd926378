// SPDX-License-Identifier: MIT
#include "toolkit/textures/colour_blocks.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace umbrixlib::toolkit {

namespace {

constexpr std::size_t kColourChannels = 4;
constexpr std::size_t kColourTexels = 16;
constexpr int kPowerSteps = 6; ///< That find the principal axis.
constexpr int kFits = 4;       ///< Of colours to choices, at most.
constexpr float kFullColour = 255.0f;

/// How far the 16 colours are from the first to the second, in 64ths.
constexpr std::array<int, 16> kWeights{0, 4, 9, 13, 17, 21, 26, 30, 34, 38, 43, 47, 51, 55, 60, 64};

using Colour = std::array<float, kColourChannels>;
using Choices = std::array<int, kColourTexels>;

float dot(Colour const& a, Colour const& b)
{
    float sum = 0.0f;
    for (std::size_t c = 0; c < kColourChannels; ++c) {
        sum += a[c] * b[c];
    }
    return sum;
}

Colour minus(Colour const& a, Colour const& b)
{
    Colour result{};
    for (std::size_t c = 0; c < kColourChannels; ++c) {
        result[c] = a[c] - b[c];
    }
    return result;
}

/// The point at @p place along a line.
Colour along(Colour const& from, Colour const& way, float place)
{
    Colour result{};
    for (std::size_t c = 0; c < kColourChannels; ++c) {
        result[c] = from[c] + place * way[c];
    }
    return result;
}

/// A colour as it is stored: 7 bits a channel, and the last bit of all of them.
struct StoredColour {
    std::array<int, kColourChannels> bits{}; ///< 0 to 127.
    int last = 0;

    int byte(std::size_t channel) const { return 2 * bits[channel] + last; }
};

StoredColour as_stored(Colour const& colour, int last)
{
    StoredColour result;
    result.last = last;
    for (std::size_t c = 0; c < kColourChannels; ++c) {
        float const half = (std::clamp(colour[c], 0.0f, kFullColour) - static_cast<float>(last)) / 2.0f;
        result.bits[c] = std::clamp(static_cast<int>(half + 0.5f), 0, 127);
    }
    return result;
}

/// What is packed, and how far it is from the block.
struct Packing {
    StoredColour first;
    StoredColour second;
    Choices choices{};
    float error = std::numeric_limits<float>::infinity();
};

/// The colours from @p first to @p second, as a decoder has them.
std::array<Colour, 16> palette(StoredColour const& first, StoredColour const& second)
{
    std::array<Colour, 16> colours{};
    for (std::size_t i = 0; i < colours.size(); ++i) {
        for (std::size_t c = 0; c < kColourChannels; ++c) {
            colours[i][c] = static_cast<float>(
                ((64 - kWeights[i]) * first.byte(c) + kWeights[i] * second.byte(c) + 32) >> 6);
        }
    }
    return colours;
}

/// The nearest of these for each texel. They lie along a line, so it is one of three at the texel's place.
Packing packed(ColourBlock const& block, StoredColour const& first, StoredColour const& second)
{
    Packing packing{first, second, {}, 0.0f};
    std::array<Colour, 16> const colours = palette(first, second);
    Colour const way = minus(colours[15], colours[0]);
    float const by_square = 15.0f / std::max(dot(way, way), 1.0f);
    for (std::size_t i = 0; i < kColourTexels; ++i) {
        float const place = std::clamp(dot(minus(block[i], colours[0]), way) * by_square, 0.0f, 15.0f);
        int const middle = static_cast<int>(place + 0.5f);
        float least = std::numeric_limits<float>::infinity();
        for (int choice = std::max(middle - 1, 0); choice <= std::min(middle + 1, 15); ++choice) {
            Colour const off = minus(block[i], colours[static_cast<std::size_t>(choice)]);
            float const error = dot(off, off);
            if (error < least) {
                least = error;
                packing.choices[i] = choice;
            }
        }
        packing.error += least;
    }
    return packing;
}

/// The two ends of a line.
struct Line {
    Colour first;
    Colour second;
};

/// From the least to the most along the principal axis of the colours.
Line principal_line(ColourBlock const& block)
{
    Colour mean{};
    for (Colour const& texel : block) {
        mean = along(mean, texel, 1.0f / static_cast<float>(kColourTexels));
    }
    std::array<Colour, kColourChannels> covariance{};
    for (Colour const& texel : block) {
        Colour const off = minus(texel, mean);
        for (std::size_t c = 0; c < kColourChannels; ++c) {
            covariance[c] = along(covariance[c], off, off[c]);
        }
    }
    // Begins with the channel that varies most, and so not across the axis.
    Colour axis = *std::ranges::max_element(
        covariance, [](Colour const& a, Colour const& b) { return dot(a, a) < dot(b, b); });
    for (int step = 0; step < kPowerSteps; ++step) {
        float const length = std::sqrt(dot(axis, axis));
        if (!(length > 0.0f)) {
            return {mean, mean};
        }
        Colour const unit = along({}, axis, 1.0f / length);
        for (std::size_t c = 0; c < kColourChannels; ++c) {
            axis[c] = dot(covariance[c], unit);
        }
    }
    float const length = std::sqrt(dot(axis, axis));
    if (!(length > 0.0f)) {
        return {mean, mean};
    }
    axis = along({}, axis, 1.0f / length);
    float least = 0.0f;
    float most = 0.0f;
    for (Colour const& texel : block) {
        float const place = dot(minus(texel, mean), axis);
        least = std::min(least, place);
        most = std::max(most, place);
    }
    return {along(mean, axis, least), along(mean, axis, most)};
}

/// The line of least squares through the texels at the places of their choices. The old one if they are all
/// the same.
Line fitted(ColourBlock const& block, Choices const& choices, Line const& old)
{
    float squares_first = 0.0f;
    float products = 0.0f;
    float squares_second = 0.0f;
    Colour by_first{};
    Colour by_second{};
    for (std::size_t i = 0; i < kColourTexels; ++i) {
        float const second = static_cast<float>(kWeights[static_cast<std::size_t>(choices[i])]) / 64.0f;
        float const first = 1.0f - second;
        squares_first += first * first;
        products += first * second;
        squares_second += second * second;
        by_first = along(by_first, block[i], first);
        by_second = along(by_second, block[i], second);
    }
    float const determinant = squares_first * squares_second - products * products;
    if (determinant < 1e-3f) {
        return old;
    }
    Line line{};
    for (std::size_t c = 0; c < kColourChannels; ++c) {
        line.first[c] = (squares_second * by_first[c] - products * by_second[c]) / determinant;
        line.second[c] = (squares_first * by_second[c] - products * by_first[c]) / determinant;
    }
    return line;
}

/// Follows one pair of last bits from @p line on, and keeps the best of what is met.
void follow(ColourBlock const& block, Line line, int first_last, int second_last, Packing& best)
{
    float before = std::numeric_limits<float>::infinity();
    for (int fit = 0; fit < kFits; ++fit) {
        Packing const packing =
            packed(block, as_stored(line.first, first_last), as_stored(line.second, second_last));
        if (packing.error < best.error) {
            best = packing;
        }
        if (!(packing.error < before)) {
            return;
        }
        before = packing.error;
        line = fitted(block, packing.choices, line);
    }
}

/// The colours whose middle is nearest to one colour: on the way there a byte is met that neither of them
/// has.
Packing packed_flat(ColourBlock const& block, int first_last, int second_last)
{
    constexpr int kMiddle = 7;
    constexpr int kReach = 2; // of 7 bits, to both sides
    Packing best;
    best.first = as_stored(block[0], first_last);
    best.second = as_stored(block[0], second_last);
    best.choices.fill(kMiddle);
    best.error = 0.0f;
    for (std::size_t c = 0; c < kColourChannels; ++c) {
        StoredColour first = best.first;
        StoredColour second = best.second;
        float least = std::numeric_limits<float>::infinity();
        int const middle = first.bits[c];
        int const low = std::max(middle - kReach, 0);
        int const high = std::min(middle + kReach, 127);
        for (first.bits[c] = low; first.bits[c] <= high; ++first.bits[c]) {
            for (second.bits[c] = low; second.bits[c] <= high; ++second.bits[c]) {
                float const off = palette(first, second)[kMiddle][c] - block[0][c];
                if (off * off < least) {
                    least = off * off;
                    best.first.bits[c] = first.bits[c];
                    best.second.bits[c] = second.bits[c];
                }
            }
        }
        best.error += least * static_cast<float>(kColourTexels);
    }
    return best;
}

/// Bits one behind the other, from the lowest of the first byte on.
class BlockBits {
public:
    void put(int number, int bits)
    {
        for (int i = 0; i < bits; ++i, ++at_) {
            auto const bit = static_cast<unsigned>(number >> i) & 1U;
            bytes_[at_ / 8] = static_cast<std::uint8_t>(bytes_[at_ / 8] | bit << at_ % 8);
        }
    }

    CodedColours const& bytes() const { return bytes_; }

private:
    CodedColours bytes_{};
    std::size_t at_ = 0;
};

CodedColours coded(Packing packing)
{
    if (packing.choices[0] >= 8) { // the highest bit of the first choice is not stored, and 0
        std::swap(packing.first, packing.second);
        std::ranges::transform(packing.choices, packing.choices.begin(), [](int each) { return 15 - each; });
    }
    BlockBits bits;
    bits.put(1 << 6, 7); // the mode
    for (std::size_t c = 0; c < kColourChannels; ++c) {
        bits.put(packing.first.bits[c], 7);
        bits.put(packing.second.bits[c], 7);
    }
    bits.put(packing.first.last, 1);
    bits.put(packing.second.last, 1);
    for (std::size_t i = 0; i < kColourTexels; ++i) {
        bits.put(packing.choices[i], i == 0 ? 3 : 4);
    }
    return bits.bytes();
}

} // namespace

CodedColours encode_colours(ColourBlock const& block)
{
    Line const line = principal_line(block);
    bool const is_opaque =
        std::ranges::all_of(block, [](Colour const& texel) { return texel[3] >= kFullColour; });
    bool const is_flat = std::ranges::all_of(block, [&](Colour const& texel) { return texel == block[0]; });
    Packing best;
    for (int const first : {1, 0}) {
        for (int const second : {1, 0}) {
            if (is_opaque && first + second < 2) {
                continue; // its most is 254
            }
            if (is_flat) {
                Packing const packing = packed_flat(block, first, second);
                best = packing.error < best.error ? packing : best;
            } else {
                follow(block, line, first, second, best);
            }
        }
    }
    return coded(best);
}

} // namespace umbrixlib::toolkit
