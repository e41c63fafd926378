// SPDX-License-Identifier: MIT
#include "textures_internal.h"
#include "tileable_noise.h"

namespace umbrixlib::examples {
namespace {

/// Ripples as a bundle of plane waves of nearly one direction: where the waves cancel, crests fork and end as
/// they do in blown sand. `turns` is the place between two crests, `strength` how clear the ripple is there.
struct Ripple {
    double turns;
    double strength;
};

Ripple ripple(Point p)
{
    constexpr int kAcross = 15; // crests on the way across the tile
    double real = 0.0;
    double imaginary = 0.0;
    double total = 0.0;
    for (int along = -4; along <= 4; ++along) {
        for (int across = -2; across <= 2; ++across) {
            double const weight = 1.0 / (1.0 + 0.5 * square(along) + 0.9 * square(across));
            double const strength =
                along == 0 && across == 0 ? 1.0 : weight * (0.1 + 0.5 * cell_random(along, across, 21));
            double const turns =
                (kAcross + across) * p.x + (along + 3) * p.y + cell_random(along, across, 22);
            real += strength * cosine_of_turns(turns);
            imaginary += strength * sine_of_turns(turns);
            total += square(strength);
        }
    }
    return {angle_in_turns(real, imaginary), std::sqrt((square(real) + square(imaginary)) / total)};
}

/// One wave of sand from trough to trough: a long rise on the windward side, a short slip face in the lee.
double sand_wave(double turns)
{
    constexpr double kCrest = 0.64;
    return turns < kCrest ? square(turns / kCrest) * (1.7 - 0.7 * turns / kCrest)
                          : 1.0 - smooth_step(kCrest, 1.0, turns);
}

} // namespace

/// Wind from the left: a broad swell, ripples with forks that fade where they meet, grains.
double dunes(Point p)
{
    Ripple const at = ripple(warped(p, 0.014, 4, 3, 25));
    double const clearness = smooth_step(0.0, 0.5, at.strength);
    double const swell = fractal_noise(p, 2, 2, 3, 27);
    double const grains = 0.02 * fractal_noise(p, 160, 2, 29) + 0.03 * fractal_noise(p, 24, 2, 33);
    return 0.8 * swell + 0.4 * clearness * (sand_wave(at.turns) - 0.5) + grains;
}

} // namespace umbrixlib::examples
