// SPDX-License-Identifier: MIT
#include "textures_internal.h"
#include "tileable_noise.h"

#include <limits>

namespace umbrixlib::examples {
namespace {

constexpr int kThreads = 24; // each way, even: over and under alternate

/// Height of the threads that run along @p along at (@p along, @p across), both counted in threads. @p phase
/// says which crossings pass over, @p seed gives each thread a thickness, level and twist of its own.
double threads(double along, double across, int phase, std::uint32_t seed, Point p)
{
    double highest = std::numeric_limits<double>::lowest();
    int const home = static_cast<int>(std::floor(across));
    for (int thread = home - 1; thread <= home + 1; ++thread) {
        int const wrapped = wrap(thread, kThreads);
        auto const trait = [&](int which) { return cell_random(wrapped, which, seed); };
        Point const run{along / kThreads, (wrapped + 0.5) / kThreads};
        double const sway = 0.16 * gradient_noise(run, 12, kThreads, seed + 20);
        double const swell = 0.07 * gradient_noise(run, 20, kThreads, seed + 21);
        double const half_width = 0.43 + 0.1 * (trait(1) - 0.5) + swell;
        double const off_axis = (across - (thread + 0.5) - sway) / half_width;
        if (std::abs(off_axis) >= 1.0) {
            continue;
        }
        double const rise = sine_of_turns(0.5 * (along + phase + thread));
        double const strands = fraction(along * 2.0 + off_axis * 0.9 + trait(3));
        double const twist = 0.075 * (1.0 - square(2.0 * strands - 1.0));
        double const fuzz = 0.05 * fractal_noise(p, 96, 2, seed + 30);
        double const crown = std::sqrt(1.0 - square(off_axis));
        double const level = 0.14 * (trait(2) - 0.5);
        highest = std::max(highest, 0.62 * crown + 0.3 * rise + level * crown + (twist + fuzz) * crown);
    }
    return highest;
}

} // namespace

/// Plain weave: two sets of twisted threads that pass over and under each other.
double cloth(Point p)
{
    double const x = p.x * kThreads;
    double const y = p.y * kThreads;
    double const floor = -0.12 + 0.04 * gradient_noise(p, 64, 64, 91);
    return std::max(floor, std::max(threads(x, y, 0, 80, p), threads(y, x, 1, 85, p)));
}

} // namespace umbrixlib::examples
