// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// What the targets of the kernels make of their bytes.

#include "common/vector_types.h"
#include "every_target.h"
#include "random_image.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <omp.h>
#include <vector>

namespace umbrixlib::fuzz {

struct Size {
    int height, width;

    std::size_t texels() const { return static_cast<std::size_t>(height) * static_cast<std::size_t>(width); }
};

/// Takes the bytes of an input one after the other, most choices one byte; behind the last one are zeros.
class CaseInput {
public:
    CaseInput(std::uint8_t const* bytes, std::size_t size) : at_(bytes), end_(bytes + size) {}

    unsigned byte() { return at_ == end_ ? 0U : *at_++; }

    /// @p low to @p high, of which there are not more than 65536.
    int whole(int low, int high)
    {
        unsigned const count = static_cast<unsigned>(high - low) + 1;
        unsigned const value = count > 256 ? byte() * 256 + byte() : byte();
        return low + static_cast<int>(value % count);
    }

    bool flag() { return byte() % 2 != 0; }

    float between(float low, float high)
    {
        return low + (high - low) * (static_cast<float>(byte()) / 255.0f);
    }

    /// Any float: of the usual size, a peculiar one, or of any bits.
    float number()
    {
        using limits = std::numeric_limits<float>;
        constexpr float kPeculiar[] = {0.0f,
                                       -0.0f,
                                       1.0f,
                                       -1.0f,
                                       0.5f,
                                       100.0f,
                                       1e9f,
                                       limits::denorm_min(),
                                       -1e-40f,
                                       limits::max(),
                                       limits::lowest(),
                                       limits::infinity(),
                                       -limits::infinity(),
                                       limits::quiet_NaN()};
        switch (whole(0, 3)) {
        case 0:
            return between(0.0f, 1.0f);
        case 1:
            return between(-4.0f, 4.0f);
        case 2:
            return kPeculiar[whole(0, static_cast<int>(std::size(kPeculiar)) - 1)];
        default:
            return any_bits();
        }
    }

    /// Up to 40 x 40 texels, or fewer and longer lines.
    Size size()
    {
        switch (whole(0, 4)) {
        case 0:
            return {1, whole(1, 300)};
        case 1:
            return {whole(1, 300), 1};
        case 2:
            return {whole(1, 6), whole(1, 256)};
        default: {
            int const height = whole(1, 40);
            return {height, whole(1, 40)};
        }
        }
    }

    /// Noise, a picture of 8 bits, a flat ground or any bits, and then a few floats of their own.
    template <typename Pixel>
    std::vector<Pixel> image(std::size_t count)
    {
        std::vector<Pixel> pixels = ground<Pixel>(count);
        auto* const floats = reinterpret_cast<float*>(pixels.data());
        std::size_t const length = count * (sizeof(Pixel) / sizeof(float));
        for (int pokes = whole(0, 7); pokes > 0; --pokes) {
            auto const place = static_cast<std::size_t>(whole(0, 65535));
            floats[place % length] = number();
        }
        return pixels;
    }

    /// An instruction set that this machine can run.
    std::int64_t target()
    {
        static std::vector<std::int64_t> const targets = hwy::SupportedAndGeneratedTargets();
        return targets[byte() % targets.size()];
    }

    /// Sets the number of OpenMP threads, mostly 1, and returns it.
    int threads()
    {
        int const choice = whole(0, 7);
        int const count = choice < 6 ? 1 : choice - 4;
        omp_set_num_threads(count);
        return count;
    }

private:
    float any_bits()
    {
        std::uint32_t bits = 0;
        for (int i = 0; i < 4; ++i) {
            bits = bits << 8U | byte();
        }
        return std::bit_cast<float>(bits);
    }

    template <typename Pixel>
    std::vector<Pixel> ground(std::size_t count)
    {
        using test::random_image;
        using test::Values;
        int const kind = whole(0, 5);
        auto const seed = static_cast<std::uint32_t>(whole(0, 65535));
        if (kind < 3) {
            constexpr Values kValues[] = {Values::kUnit, Values::kSigned, Values::kHostile};
            return random_image<Pixel>(count, seed, kValues[kind]);
        }
        std::vector<Pixel> pixels = random_image<Pixel>(count, seed);
        auto* const floats = reinterpret_cast<float*>(pixels.data());
        auto* const end = floats + count * (sizeof(Pixel) / sizeof(float));
        if (kind == 3) {
            std::transform(floats, end, floats, [](float v) { return std::round(v * 255.0f) / 255.0f; });
        } else if (kind == 4) {
            std::fill(floats, end, number());
        } else {
            std::mt19937 bits(seed);
            std::generate(floats, end,
                          [&] { return std::bit_cast<float>(static_cast<std::uint32_t>(bits())); });
        }
        return pixels;
    }

    std::uint8_t const* at_;
    std::uint8_t const* end_;
};

} // namespace umbrixlib::fuzz
