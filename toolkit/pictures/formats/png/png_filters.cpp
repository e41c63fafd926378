// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/png/png_filters.h"

#include <algorithm>

namespace umbrixlib::toolkit {

namespace {

/// In 16 bits: as many lanes of a vector as can be.
std::int16_t distance(std::int16_t a, std::int16_t b)
{
    return static_cast<std::int16_t>(a < b ? b - a : a - b);
}

std::uint8_t paeth(std::int16_t left, std::int16_t above, std::int16_t above_left)
{
    // The guess is left + above - above_left; these are its distances.
    std::int16_t const to_left = distance(above, above_left);
    std::int16_t const to_above = distance(left, above_left);
    auto const both = static_cast<std::int16_t>(left + above - 2 * above_left);
    auto const to_above_left = static_cast<std::int16_t>(both < 0 ? -both : both);
    std::int16_t const other = to_above <= to_above_left ? above : above_left;
    bool const is_left = to_left <= to_above && to_left <= to_above_left;
    return static_cast<std::uint8_t>(is_left ? left : other);
}

std::uint8_t less(unsigned sample, unsigned guess)
{
    return static_cast<std::uint8_t>(sample - guess);
}

} // namespace

void filter_row(PngFilter filter, std::span<std::uint8_t const> row, std::uint8_t const* above,
                std::size_t step, std::uint8_t* __restrict to)
{
    std::uint8_t const* const from = row.data();
    std::size_t const first = std::min(step, row.size()); // what has nothing on its left
    switch (filter) {
    case PngFilter::kNone:
        std::copy(row.begin(), row.end(), to);
        break;
    case PngFilter::kSub:
        std::copy_n(from, first, to);
        for (std::size_t i = first; i < row.size(); ++i) {
            to[i] = less(from[i], from[i - step]);
        }
        break;
    case PngFilter::kUp:
        for (std::size_t i = 0; i < row.size(); ++i) {
            to[i] = less(from[i], above[i]);
        }
        break;
    case PngFilter::kAverage:
        for (std::size_t i = 0; i < first; ++i) {
            to[i] = less(from[i], above[i] / 2U);
        }
        for (std::size_t i = first; i < row.size(); ++i) {
            to[i] = less(from[i], (from[i - step] + above[i]) / 2U);
        }
        break;
    case PngFilter::kPaeth:
        for (std::size_t i = 0; i < first; ++i) {
            to[i] = less(from[i], above[i]);
        }
        for (std::size_t i = first; i < row.size(); ++i) {
            to[i] = less(from[i], paeth(from[i - step], above[i], above[i - step]));
        }
        break;
    }
}

} // namespace umbrixlib::toolkit
