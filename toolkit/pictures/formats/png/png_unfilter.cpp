// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/png/png_unfilter.h"

#include <cstring>

namespace umbrixlib::toolkit {

namespace {

// A texel, with what lies behind it, fills one register. Each texel waits for the one on its left, so that
// vectors reach no further.
using TexelBytes = std::uint8_t __attribute__((vector_size(8)));
using TexelNumbers = std::int16_t __attribute__((vector_size(16)));

TexelBytes load(std::uint8_t const* from)
{
    TexelBytes bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    return bytes;
}

TexelNumbers widened(TexelBytes bytes)
{
    return __builtin_convertvector(bytes, TexelNumbers);
}

TexelNumbers distance(TexelNumbers a, TexelNumbers b)
{
    TexelNumbers const difference = a - b;
    TexelNumbers const sign = difference >> 15;
    return (difference ^ sign) - sign;
}

TexelNumbers chosen(TexelNumbers mask, TexelNumbers a, TexelNumbers b)
{
    return (mask & a) | (~mask & b);
}

TexelBytes guess_sub(TexelBytes left, TexelBytes, TexelBytes)
{
    return left;
}

TexelBytes guess_average(TexelBytes left, TexelBytes above, TexelBytes)
{
    return (left & above) + ((left ^ above) >> 1);
}

/// The one of three that is nearest to left + above - above left; of equals, the first in this order.
TexelBytes guess_paeth(TexelBytes left_bytes, TexelBytes above_bytes, TexelBytes above_left_bytes)
{
    TexelNumbers const left = widened(left_bytes);
    TexelNumbers const above = widened(above_bytes);
    TexelNumbers const above_left = widened(above_left_bytes);
    TexelNumbers const to_left = distance(above, above_left);
    TexelNumbers const to_above = distance(left, above_left);
    TexelNumbers const to_above_left = distance(left + above, above_left + above_left);
    TexelNumbers const other = chosen(to_above <= to_above_left, above, above_left);
    TexelNumbers const is_left = (to_left <= to_above) & (to_left <= to_above_left);
    return __builtin_convertvector(chosen(is_left, left, other), TexelBytes);
}

/// Goes over a row from texel to texel.
/// @param guess What was taken from a texel: of the one on its left, the one above and the one above left.
template <std::size_t kStep, typename Guess>
void restore(std::span<std::uint8_t> row, std::uint8_t const* above, Guess const& guess)
{
    TexelBytes left{};
    TexelBytes above_left{};
    for (std::size_t i = 0; i + kStep <= row.size(); i += kStep) {
        TexelBytes const over = load(above + i);
        left = load(&row[i]) + guess(left, over, above_left);
        std::memcpy(&row[i], &left, kStep);
        above_left = over;
    }
}

template <std::size_t kStep>
void unfilter(PngFilter filter, std::span<std::uint8_t> row, std::uint8_t const* above)
{
    switch (filter) {
    case PngFilter::kNone:
        break;
    case PngFilter::kSub:
        restore<kStep>(row, above, guess_sub);
        break;
    case PngFilter::kUp:
        for (std::size_t i = 0; i < row.size(); ++i) {
            row[i] = static_cast<std::uint8_t>(row[i] + above[i]);
        }
        break;
    case PngFilter::kAverage:
        restore<kStep>(row, above, guess_average);
        break;
    case PngFilter::kPaeth:
        restore<kStep>(row, above, guess_paeth);
        break;
    }
}

} // namespace

void unfilter_row(PngFilter filter, std::span<std::uint8_t> row, std::uint8_t const* above, std::size_t step)
{
    switch (step) {
    case 1:
        return unfilter<1>(filter, row, above);
    case 2:
        return unfilter<2>(filter, row, above);
    case 3:
        return unfilter<3>(filter, row, above);
    case 4:
        return unfilter<4>(filter, row, above);
    case 6:
        return unfilter<6>(filter, row, above);
    default:
        return unfilter<8>(filter, row, above);
    }
}

} // namespace umbrixlib::toolkit
