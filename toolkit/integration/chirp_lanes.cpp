// SPDX-License-Identifier: MIT
#include "toolkit/integration/chirp_lanes_internal.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace umbrixlib::toolkit {

namespace {

/// The least length from @p least on that has no factors but 2, 3 and 5.
std::size_t easy_length(std::size_t least)
{
    std::size_t best = 1;
    while (best < least) {
        best *= 2;
    }
    for (std::size_t fives = 1; fives < best; fives *= 5) {
        for (std::size_t odd = fives; odd < best; odd *= 3) {
            std::size_t length = odd;
            while (length < least) {
                length *= 2;
            }
            best = std::min(best, length);
        }
    }
    return best;
}

std::vector<std::complex<float>> chirp_of(std::size_t length)
{
    std::vector<std::complex<float>> chirp(length);
    for (std::size_t j = 0; j < length; ++j) {
        // exp(-pi i j^2 / length) repeats when j^2 grows by twice the length.
        double const angle =
            -std::numbers::pi * static_cast<double>(j * j % (2 * length)) / static_cast<double>(length);
        chirp[j] = {static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle))};
    }
    return chirp;
}

std::vector<std::complex<float>> kernel_of(std::vector<std::complex<float>> const& chirp,
                                           FourierLanes const& inner)
{
    std::size_t const length = inner.length();
    std::vector<float> parts(2 * kLanes * length);
    std::vector<float> scratch(inner.scratch());
    ComplexLanes const lanes{parts.data(), parts.data() + kLanes * length};
    for (std::size_t j = 0; j < chirp.size(); ++j) {
        for (std::size_t const at : {j, (length - j) % length}) {
            lanes.real[at * kLanes] = chirp[j].real();
            lanes.imaginary[at * kLanes] = -chirp[j].imag();
        }
    }
    inner.transform(lanes, scratch.data());
    std::vector<std::complex<float>> kernel(length);
    for (std::size_t k = 0; k < length; ++k) {
        kernel[k] =
            std::complex(lanes.real[k * kLanes], lanes.imaginary[k * kLanes]) / static_cast<float>(length);
    }
    return kernel;
}

/// Number i of each lane of @p from times by[i].
void multiply(ComplexLanes const& from, std::vector<std::complex<float>> const& by, ComplexLanes const& to)
{
    for (std::size_t i = 0; i < by.size(); ++i) {
        float const re = by[i].real();
        float const im = by[i].imag();
#pragma omp simd
        for (std::size_t at = i * kLanes; at < (i + 1) * kLanes; ++at) {
            float const real = from.real[at] * re - from.imaginary[at] * im;
            to.imaginary[at] = from.real[at] * im + from.imaginary[at] * re;
            to.real[at] = real;
        }
    }
}

} // namespace

FourierLanes::Chirp::Chirp(std::size_t length)
    : chirp_(chirp_of(length)), inner_(easy_length(2 * length - 1)), kernel_(kernel_of(chirp_, inner_))
{
}

void FourierLanes::Chirp::transform(ComplexLanes lanes, float* scratch) const
{
    std::size_t const size = inner_.length() * kLanes;
    std::size_t const used = chirp_.size() * kLanes;
    ComplexLanes const wide{scratch, scratch + size};
    ComplexLanes const exchanged{wide.imaginary, wide.real};
    float* const rest = scratch + 2 * size;
    multiply(lanes, chirp_, wide);
    std::fill_n(wide.real + used, size - used, 0.0f);
    std::fill_n(wide.imaginary + used, size - used, 0.0f);
    inner_.transform(wide, rest);
    multiply(wide, kernel_, wide);
    inner_.transform(exchanged, rest); // back
    multiply(wide, chirp_, lanes);
}

} // namespace umbrixlib::toolkit
