// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Curves that the textures are shaped with. Only additions, products, quotients, square roots and floors:
/// IEEE 754 rounds these alike everywhere, so a texture has the same bits on every machine. The sine of the C
/// library has not.

#include <algorithm>
#include <cmath>

namespace umbrixlib::examples {

/// A place on the tile: x to the right, y up, both 0 to 1.
struct Point {
    double x;
    double y;
};

inline double square(double value)
{
    return value * value;
}

inline double length(Point p)
{
    return std::sqrt(p.x * p.x + p.y * p.y);
}

inline double fraction(double value)
{
    return value - std::floor(value);
}

/// @p index wrapped into 0 to @p period - 1.
inline int wrap(int index, int period)
{
    int const rest = index % period;
    return rest < 0 ? rest + period : rest;
}

inline double unit_clamp(double value)
{
    return std::clamp(value, 0.0, 1.0);
}

inline double mix(double from, double to, double share)
{
    return from + (to - from) * share;
}

/// 0 below @p low, 1 above @p high, with level ends.
inline double smooth_step(double low, double high, double value)
{
    double const t = unit_clamp((value - low) / (high - low));
    return t * t * (3.0 - 2.0 * t);
}

/// The profile of a rounded edge: a quarter of a circle, upright at 0 and level from 1 on.
inline double quarter_round(double t)
{
    return std::sqrt(1.0 - square(1.0 - unit_clamp(t)));
}

/// Sine of an angle in turns. Bhaskara's formula, 0.002 off at most.
inline double sine_of_turns(double turns)
{
    double const half_turns = 2.0 * fraction(turns);
    double const t = half_turns < 1.0 ? half_turns : half_turns - 1.0;
    double const arch = t * (1.0 - t);
    double const value = 16.0 * arch / (5.0 - 4.0 * arch);
    return half_turns < 1.0 ? value : -value;
}

inline double cosine_of_turns(double turns)
{
    return sine_of_turns(turns + 0.25);
}

/// Angle of (@p x, @p y) in turns, 0 to 1; 0.0008 of a turn off at most.
inline double angle_in_turns(double x, double y)
{
    double const ax = std::abs(x);
    double const ay = std::abs(y);
    double const larger = std::max(ax, ay);
    if (larger == 0.0) {
        return 0.0;
    }
    double const t = std::min(ax, ay) / larger;
    double const octant = t * (0.125 + 0.0435 * (1.0 - t));
    double const quadrant = ay > ax ? 0.25 - octant : octant;
    double const half = x < 0.0 ? 0.5 - quadrant : quadrant;
    return y < 0.0 ? 1.0 - half : half;
}

} // namespace umbrixlib::examples
