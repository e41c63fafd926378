// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The recursive Gaussian as it is defined: one line after the other, one component after the other.

#include "common/vector_types.h"

#include <cmath>
#include <cstddef>
#include <type_traits>
#include <vector>

namespace umbrixlib::test::reference {

struct Coefficients {
    float a0, a1, a2, a3, b1, b2, edge_forward, edge_backward;
};

inline Coefficients gaussian_coefficients(float sigma)
{
    auto const d = [](float value) { return static_cast<double>(value); };
    auto const f = [](double value) { return static_cast<float>(value); };
    double const s = d(sigma) < d(0.1f) ? d(0.1f) : d(sigma);
    float const alpha = f(1.6950000524520874 / s);
    float const ema = f(std::exp(d(-alpha)));
    float const ema2 = f(std::exp(d(f(d(alpha) * -2.0))));
    float const k = f((1.0 - d(ema)) * (1.0 - d(ema)) / (d(alpha) * 2.0 * d(ema) + 1.0 - d(ema2)));
    Coefficients c{};
    c.b1 = f(d(ema) * -2.0);
    c.b2 = ema2;
    c.a0 = k;
    c.a1 = f((d(alpha) - 1.0) * d(k) * d(ema));
    c.a2 = f((d(alpha) + 1.0) * d(k) * d(ema));
    c.a3 = f(-d(k) * d(ema2));
    double const divisor = d(c.b1) + 1.0 + d(ema2);
    c.edge_forward = f((d(c.a0) + d(c.a1)) / divisor);
    c.edge_backward = f((d(c.a3) + d(c.a2)) / divisor);
    return c;
}

/// One step. @p kOnce: formed in double and rounded once; otherwise every operation rounds.
template <bool kOnce>
float gaussian_step(float f1, float x1, float f2, float x2, float b1, float y1, float b2, float y2)
{
    if constexpr (kOnce) {
        auto const d = [](float value) { return static_cast<double>(value); };
        return static_cast<float>(d(f1) * d(x1) + d(f2) * d(x2) - d(b1) * d(y1) - d(b2) * d(y2));
    } else {
        return f1 * x1 + f2 * x2 - b1 * y1 - b2 * y2;
    }
}

/// A line of @p length pixels that lie @p step pixels apart.
template <typename Pixel>
void gaussian_line(Pixel const* input, Pixel* output, std::size_t length, std::size_t step,
                   Coefficients const& c)
{
    constexpr std::size_t kComponents = sizeof(Pixel) / sizeof(float);
    constexpr bool kOnce = std::is_same_v<Pixel, float>;
    float xp[kComponents] = {}, yp[kComponents] = {}, yb[kComponents] = {};
    for (bool const writes : {false, true}) {
        for (std::size_t i = 0; i < length; ++i) {
            auto const* const x = reinterpret_cast<float const*>(input + i * step);
            auto* const y = reinterpret_cast<float*>(output + i * step);
            for (std::size_t k = 0; k < kComponents; ++k) {
                float const yc = gaussian_step<kOnce>(c.a0, x[k], c.a1, xp[k], c.b1, yp[k], c.b2, yb[k]);
                xp[k] = x[k];
                yb[k] = yp[k];
                yp[k] = yc;
                if (writes) {
                    y[k] = yc;
                }
            }
        }
    }
    float xn[kComponents] = {}, xa[kComponents] = {}, yn[kComponents] = {}, ya[kComponents] = {};
    for (bool const writes : {false, true}) {
        for (std::size_t i = length; i-- > 0;) {
            auto const* const x = reinterpret_cast<float const*>(input + i * step);
            auto* const y = reinterpret_cast<float*>(output + i * step);
            for (std::size_t k = 0; k < kComponents; ++k) {
                float const yc = gaussian_step<kOnce>(c.a2, xn[k], c.a3, xa[k], c.b1, yn[k], c.b2, ya[k]);
                xa[k] = xn[k];
                xn[k] = x[k];
                ya[k] = yn[k];
                yn[k] = yc;
                if (writes) {
                    y[k] = y[k] + yc;
                }
            }
        }
    }
}

template <typename Pixel>
void gaussian_columns(Pixel const* input, Pixel* output, int width, int height, Coefficients const& c)
{
    for (int x = 0; x < width; ++x) {
        gaussian_line(input + x, output + x, static_cast<std::size_t>(height),
                      static_cast<std::size_t>(width), c);
    }
}

template <typename Pixel>
void gaussian_rows(Pixel const* input, Pixel* output, int width, int height, Coefficients const& c)
{
    for (std::ptrdiff_t y = 0; y < height; ++y) {
        gaussian_line(input + y * width, output + y * width, static_cast<std::size_t>(width), 1, c);
    }
}

template <typename Pixel>
std::vector<Pixel> gaussian(std::vector<Pixel> const& source, int width, int height, float sigma)
{
    Coefficients const c = gaussian_coefficients(sigma);
    std::vector<Pixel> scratch(source.size());
    std::vector<Pixel> result(source.size());
    gaussian_columns(source.data(), scratch.data(), width, height, c);
    gaussian_rows(scratch.data(), result.data(), width, height, c);
    return result;
}

} // namespace umbrixlib::test::reference
