// SPDX-License-Identifier: MIT
#include "toolkit/integration/axis_transform.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace umbrixlib::toolkit {

namespace {

/// Where element @p at of a mirrored sequence stands in the one whose Fourier transform is taken: the even
/// ones first, then the odd ones from the last to the first (Makhoul, "A fast cosine transform in one and two
/// dimensions", 1980).
std::size_t folded(std::size_t at, std::size_t length)
{
    return at % 2 == 0 ? at / 2 : length - 1 - at / 2;
}

void copy(ComplexLanes const& from, std::size_t at, ComplexLanes const& to, std::size_t place)
{
    std::copy_n(from.real + at * kLanes, kLanes, to.real + place * kLanes);
    std::copy_n(from.imaginary + at * kLanes, kLanes, to.imaginary + place * kLanes);
}

/// An element of a spectrum and the one that mirrors it.
struct Mirrored {
    float real;
    float imaginary;
    float other_real;
    float other_imaginary;
};

/// Puts what @p change makes of each element below the middle and its mirror in their place, lane by lane.
template <typename Change>
void change_mirrored(ComplexLanes lanes, std::size_t length, Change const& change)
{
    for (std::size_t k = 1; k < length - k; ++k) {
        float* const real = lanes.real + k * kLanes;
        float* const imaginary = lanes.imaginary + k * kLanes;
        float* const other_real = lanes.real + (length - k) * kLanes;
        float* const other_imaginary = lanes.imaginary + (length - k) * kLanes;
#pragma omp simd
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            Mirrored const made =
                change({real[lane], imaginary[lane], other_real[lane], other_imaginary[lane]});
            real[lane] = made.real;
            imaginary[lane] = made.imaginary;
            other_real[lane] = made.other_real;
            other_imaginary[lane] = made.other_imaginary;
        }
    }
}

} // namespace

AxisTransform::AxisTransform(std::size_t length, bool repeats) : fourier_(length), repeats_(repeats)
{
    for (std::size_t k = 0; !repeats && k < length; ++k) {
        double const angle = -std::numbers::pi * static_cast<double>(k) / (2.0 * static_cast<double>(length));
        quarter_turns_.emplace_back(static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle)));
    }
}

double AxisTransform::factor(std::size_t number) const
{
    // A wave of n half periods over the axis turns by n * pi / length from texel to texel.
    std::size_t const half_periods = (repeats_ ? 2 : 1) * number;
    if (half_periods % length() == 0) {
        return 0.0;
    }
    double const difference =
        2.0 * std::sin(std::numbers::pi * static_cast<double>(half_periods) / static_cast<double>(length()));
    return difference * difference;
}

/// The spectrum of two real sequences, as one of complex numbers, into those of each.
void AxisTransform::separate(ComplexLanes lanes) const
{
    change_mirrored(lanes, length(), [](Mirrored const& a) {
        return Mirrored{0.5f * (a.real + a.other_real), 0.5f * (a.imaginary + a.other_imaginary),
                        0.5f * (a.imaginary - a.other_imaginary), 0.5f * (a.other_real - a.real)};
    });
}

void AxisTransform::join(ComplexLanes lanes) const
{
    change_mirrored(lanes, length(), [](Mirrored const& a) {
        return Mirrored{a.real - a.other_imaginary, a.imaginary + a.other_real, a.real + a.other_imaginary,
                        a.imaginary - a.other_real};
    });
}

void AxisTransform::forward(ComplexLanes lanes, float* scratch) const
{
    if (repeats_) {
        fourier_.transform(lanes, scratch);
        separate(lanes);
        return;
    }
    ComplexLanes const spectrum{scratch, scratch + kLanes * length()};
    for (std::size_t at = 0; at < length(); ++at) {
        copy(lanes, at, spectrum, folded(at, length()));
    }
    fourier_.transform(spectrum, scratch + 2 * kLanes * length());
    copy(spectrum, 0, lanes, 0);
    for (std::size_t k = 1; k < length(); ++k) {
        float const cosine = quarter_turns_[k].real();
        float const sine = quarter_turns_[k].imag();
        std::size_t const at = k * kLanes;
        std::size_t const other = (length() - k) * kLanes;
#pragma omp simd
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            // Half of the sum of this one, turned, and of the other, turned as far the other way.
            float const real = spectrum.real[at + lane];
            float const imaginary = spectrum.imaginary[at + lane];
            float const other_real = spectrum.real[other + lane];
            float const other_imaginary = spectrum.imaginary[other + lane];
            lanes.real[at + lane] =
                0.5f * (cosine * (real + other_real) - sine * (imaginary - other_imaginary));
            lanes.imaginary[at + lane] =
                0.5f * (cosine * (imaginary + other_imaginary) + sine * (real - other_real));
        }
    }
}

void AxisTransform::backward(ComplexLanes lanes, float* scratch) const
{
    if (repeats_) {
        join(lanes);
        fourier_.transform({lanes.imaginary, lanes.real}, scratch);
        return;
    }
    ComplexLanes const spectrum{scratch, scratch + kLanes * length()};
    copy(lanes, 0, spectrum, 0);
    for (std::size_t k = 1; k < length(); ++k) {
        float const cosine = quarter_turns_[k].real();
        float const sine = quarter_turns_[k].imag();
        std::size_t const at = k * kLanes;
        std::size_t const other = (length() - k) * kLanes;
#pragma omp simd
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            // This one less i times the other, turned back.
            float const real = lanes.real[at + lane] + lanes.imaginary[other + lane];
            float const imaginary = lanes.imaginary[at + lane] - lanes.real[other + lane];
            spectrum.real[at + lane] = cosine * real + sine * imaginary;
            spectrum.imaginary[at + lane] = cosine * imaginary - sine * real;
        }
    }
    fourier_.transform({spectrum.imaginary, spectrum.real}, scratch + 2 * kLanes * length());
    for (std::size_t at = 0; at < length(); ++at) {
        copy(spectrum, folded(at, length()), lanes, at);
    }
}

} // namespace umbrixlib::toolkit
