// SPDX-License-Identifier: MIT
#include "toolkit/integration/fourier_lanes.h"

#include "toolkit/integration/chirp_lanes_internal.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

/// A complex number without std::complex's care for infinities.
struct Number {
    float re;
    float im;
};

Number operator+(Number a, Number b)
{
    return {a.re + b.re, a.im + b.im};
}

Number operator-(Number a, Number b)
{
    return {a.re - b.re, a.im - b.im};
}

Number operator*(Number a, Number b)
{
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

Number operator*(float a, Number b)
{
    return {a * b.re, a * b.im};
}

/// -i times @p a.
Number turned_right(Number a)
{
    return {a.im, -a.re};
}

std::array<Number, 2> butterfly(std::array<Number, 2> const& x)
{
    return {x[0] + x[1], x[0] - x[1]};
}

std::array<Number, 3> butterfly(std::array<Number, 3> const& x)
{
    constexpr float kSine = 0.86602540378443865f; // of 60 degrees
    Number const sum = x[1] + x[2];
    Number const even = x[0] - 0.5f * sum;
    Number const odd = kSine * turned_right(x[1] - x[2]);
    return {x[0] + sum, even + odd, even - odd};
}

std::array<Number, 4> butterfly(std::array<Number, 4> const& x)
{
    Number const a = x[0] + x[2];
    Number const b = x[0] - x[2];
    Number const c = x[1] + x[3];
    Number const d = turned_right(x[1] - x[3]);
    return {a + c, b + d, a - c, b - d};
}

std::array<Number, 5> butterfly(std::array<Number, 5> const& x)
{
    constexpr float kCosine1 = 0.30901699437494742f; // of 72 degrees
    constexpr float kCosine2 = -0.80901699437494742f;
    constexpr float kSine1 = 0.95105651629515357f;
    constexpr float kSine2 = 0.58778525229247313f;
    Number const a = x[1] + x[4];
    Number const b = x[2] + x[3];
    Number const c = turned_right(x[1] - x[4]);
    Number const d = turned_right(x[2] - x[3]);
    Number const even1 = x[0] + kCosine1 * a + kCosine2 * b;
    Number const even2 = x[0] + kCosine2 * a + kCosine1 * b;
    Number const odd1 = kSine1 * c + kSine2 * d;
    Number const odd2 = kSine2 * c - kSine1 * d;
    return {x[0] + a + b, even1 + odd1, even2 + odd2, even2 - odd2, even1 - odd1};
}

/// exp(-2 pi i @p part / @p whole), the part being below the whole.
std::complex<float> root(std::size_t part, std::size_t whole)
{
    double const angle = -2.0 * std::numbers::pi * static_cast<double>(part) / static_cast<double>(whole);
    return {static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle))};
}

/// The factors of @p length, fours first; the last one is above kLargestFactor if any is.
std::vector<std::size_t> factors_of(std::size_t length)
{
    std::vector<std::size_t> factors;
    while (length % 4 == 0) {
        factors.push_back(4);
        length /= 4;
    }
    for (std::size_t prime = 2; prime <= FourierLanes::kLargestFactor; ++prime) {
        while (length % prime == 0) {
            factors.push_back(prime);
            length /= prime;
        }
    }
    if (length > 1) {
        factors.push_back(length);
    }
    return factors;
}

} // namespace

FourierLanes::FourierLanes(std::size_t length) : length_(length)
{
    std::vector<std::size_t> const factors = factors_of(length);
    if (!factors.empty() && factors.back() > kLargestFactor) {
        chirp_.emplace_back(length);
        return;
    }
    std::size_t stride = 1;
    for (std::size_t const radix : factors) {
        stages_.push_back(make_stage(radix, length / stride, stride));
        stride *= radix;
    }
}

FourierLanes::FourierLanes(FourierLanes&&) noexcept = default;
FourierLanes::~FourierLanes() = default;

FourierLanes::Stage FourierLanes::make_stage(std::size_t radix, std::size_t left, std::size_t stride)
{
    Stage stage{radix, left / radix, stride, {}};
    bool const is_plain = radix > 5;
    for (std::size_t block = 0; block < stage.blocks; ++block) {
        for (std::size_t j = is_plain ? 0 : 1; j < radix; ++j) {
            for (std::size_t k = 0; k < (is_plain ? radix : 1); ++k) {
                stage.turns.push_back(root((j * block + j * k * stage.blocks) % left, left));
            }
        }
    }
    return stage;
}

std::size_t FourierLanes::scratch() const
{
    return chirp_.empty() ? 2 * kLanes * length_ : chirp_.front().scratch();
}

template <std::size_t kRadix>
void FourierLanes::run(Stage const& stage, ComplexLanes const& from, ComplexLanes const& to)
{
    std::size_t const run = stage.stride * kLanes;
    std::size_t const part = stage.blocks * run;
    for (std::size_t block = 0; block < stage.blocks; ++block) {
        std::complex<float> const* const turns = &stage.turns[block * (kRadix - 1)];
        float const* __restrict const from_real = from.real + block * run;
        float const* __restrict const from_imaginary = from.imaginary + block * run;
        float* __restrict const to_real = to.real + block * kRadix * run;
        float* __restrict const to_imaginary = to.imaginary + block * kRadix * run;
#pragma omp simd
        for (std::size_t i = 0; i < run; ++i) {
            std::array<Number, kRadix> parts;
            for (std::size_t k = 0; k < kRadix; ++k) {
                parts[k] = {from_real[k * part + i], from_imaginary[k * part + i]};
            }
            parts = butterfly(parts);
            to_real[i] = parts[0].re;
            to_imaginary[i] = parts[0].im;
            for (std::size_t j = 1; j < kRadix; ++j) {
                Number const turned = parts[j] * Number{turns[j - 1].real(), turns[j - 1].imag()};
                to_real[j * run + i] = turned.re;
                to_imaginary[j * run + i] = turned.im;
            }
        }
    }
}

/// A stage of any radix: each result is the sum of all parts, each turned.
void FourierLanes::run_plain(Stage const& stage, ComplexLanes const& from, ComplexLanes const& to)
{
    std::size_t const run = stage.stride * kLanes;
    std::size_t const part = stage.blocks * run;
    std::complex<float> const* turn = stage.turns.data();
    for (std::size_t block = 0; block < stage.blocks; ++block) {
        float const* __restrict const from_real = from.real + block * run;
        float const* __restrict const from_imaginary = from.imaginary + block * run;
        for (std::size_t j = 0; j < stage.radix; ++j, turn += stage.radix) {
            float* __restrict const to_real = to.real + (block * stage.radix + j) * run;
            float* __restrict const to_imaginary = to.imaginary + (block * stage.radix + j) * run;
            for (std::size_t first = 0; first < run; first += kLanes) {
                float real[kLanes] = {};
                float imaginary[kLanes] = {};
                for (std::size_t k = 0; k < stage.radix; ++k) {
                    Number const by{turn[k].real(), turn[k].imag()};
                    std::size_t const at = k * part + first;
#pragma omp simd
                    for (std::size_t lane = 0; lane < kLanes; ++lane) {
                        Number const turned = by * Number{from_real[at + lane], from_imaginary[at + lane]};
                        real[lane] += turned.re;
                        imaginary[lane] += turned.im;
                    }
                }
                std::copy_n(real, kLanes, to_real + first);
                std::copy_n(imaginary, kLanes, to_imaginary + first);
            }
        }
    }
}

void FourierLanes::transform(ComplexLanes lanes, float* scratch) const
{
    if (!chirp_.empty()) {
        chirp_.front().transform(lanes, scratch);
        return;
    }
    // Each stage writes from one pair of arrays to the other, in the order that the next one reads
    // (Stockham).
    ComplexLanes from = lanes;
    ComplexLanes to{scratch, scratch + length_ * kLanes};
    for (Stage const& stage : stages_) {
        switch (stage.radix) {
        case 2:
            run<2>(stage, from, to);
            break;
        case 3:
            run<3>(stage, from, to);
            break;
        case 4:
            run<4>(stage, from, to);
            break;
        case 5:
            run<5>(stage, from, to);
            break;
        default:
            run_plain(stage, from, to);
        }
        std::swap(from, to);
    }
    if (from.real != lanes.real) {
        std::copy_n(from.real, length_ * kLanes, lanes.real);
        std::copy_n(from.imaginary, length_ * kLanes, lanes.imaginary);
    }
}

} // namespace umbrixlib::toolkit
