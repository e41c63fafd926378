// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Noise that repeats with the tile and is the same on every machine: its random numbers are integer hashes.

#include "shapes.h"

#include <cstdint>

namespace umbrixlib::examples {

/// A number from 0 to below 1 that belongs to (@p x, @p y) under @p seed.
double cell_random(int x, int y, std::uint32_t seed);

/// Gradient noise, about -1 to 1, whose lattice has @p columns by @p rows cells on the tile.
double gradient_noise(Point p, int columns, int rows, std::uint32_t seed);

/// Sum of @p octaves of gradient noise, each twice as fine and half as strong as the one before; about -1
/// to 1.
double fractal_noise(Point p, int columns, int rows, int octaves, std::uint32_t seed);

/// As above with square cells.
inline double fractal_noise(Point p, int cells, int octaves, std::uint32_t seed)
{
    return fractal_noise(p, cells, cells, octaves, seed);
}

/// @p p moved by up to about @p reach in either direction by fractal noise.
Point warped(Point p, double reach, int cells, int octaves, std::uint32_t seed);

} // namespace umbrixlib::examples
