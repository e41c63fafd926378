// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <limits>
#include <random>
#include <vector>

namespace umbrixlib::test {

enum class Values {
    kUnit,   ///< Uniform in 0..1.
    kSigned, ///< Uniform in -2..2.
    kHostile ///< As kSigned, with zeros of both signs, denormals, infinities and NaN strewn in.
};

/// @p count pixels of float, float3 or float4 from a seeded generator: the same on every run and machine.
template <typename Pixel>
std::vector<Pixel> random_image(std::size_t count, std::uint32_t seed, Values values = Values::kUnit)
{
    using limits = std::numeric_limits<float>;
    constexpr float kStrewn[] = {0.0f,
                                 -0.0f,
                                 1.0f,
                                 -1.0f,
                                 limits::denorm_min(),
                                 -limits::denorm_min(),
                                 1e-40f,
                                 limits::max(),
                                 limits::infinity(),
                                 -limits::infinity(),
                                 limits::quiet_NaN()};
    std::mt19937 generator(seed);
    auto const unit = [&] { return static_cast<float>(generator() >> 8) * (1.0f / 16777216.0f); };
    std::vector<Pixel> image(count);
    auto* const floats = reinterpret_cast<float*>(image.data());
    for (std::size_t i = 0; i < count * (sizeof(Pixel) / sizeof(float)); ++i) {
        float const value = unit();
        floats[i] = values == Values::kUnit ? value : value * 4.0f - 2.0f;
        if (values == Values::kHostile && generator() % 8 == 0) {
            floats[i] = kStrewn[generator() % (sizeof kStrewn / sizeof *kStrewn)];
        }
    }
    return image;
}

} // namespace umbrixlib::test
