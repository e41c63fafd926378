// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/checks/finding.h"
#include "toolkit/pictures/picture.h"

#include <array>
#include <cstddef>

namespace umbrixlib::toolkit {

/// How a sample stands for a component of a normal: sample * scale + offset.
struct NormalCode {
    double scale;
    double offset;
};

/// A length that differs from 1 by this is not 1. Rounding to 8 bits gives up to 0.0063, noise up to 0.014.
inline constexpr double kMostOffLength = 0.02;

/// Whether a normal has a length that is not 1.
constexpr bool is_off(double length)
{
    return !(length >= 1.0 - kMostOffLength && length <= 1.0 + kMostOffLength);
}

/// What is counted over the texels of a normal map.
struct NormalSums {
    /// Bytes that flat ground may have, and the ones beside.
    static constexpr std::size_t kFirstFlat = 126;
    static constexpr std::size_t kFlats = 4;

    Tally off_length;
    double shortest = 1.0;
    double longest = 1.0;
    double length_sum = 0.0;

    Tally down; ///< Blue is below half by more than a step of 8 bits.
    double lowest = 1.0;

    float least_blue = 1e30f; ///< Samples.
    float most_blue = -1e30f;
    Tally off_blue; ///< It is not what red and green tell.
    double most_off_blue = 0.0;

    Tally clipped; ///< Red or green is at an end, and the normal does not lie in the surface.

    /// Red and green of bytes, where all four neighbours are the same.
    std::array<std::array<Tally, kFlats>, 2> flat{};

    /// Mean curl of slopes, in parts of a normal's length, as the axes can be: as they are, green turned
    /// over, red and green swapped, and both.
    std::array<double, 4> curl{};

    void add(NormalSums const& other);
};

/// Counts over @p normals, of three channels or four. The same to the bit with any number of threads.
NormalSums sums_of_normals(Picture const& normals, NormalCode const& code);

} // namespace umbrixlib::toolkit
