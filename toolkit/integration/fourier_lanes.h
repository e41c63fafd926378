// SPDX-License-Identifier: MIT
#pragma once

#include <complex>
#include <cstddef>
#include <vector>

namespace umbrixlib::toolkit {

/// Sequences that are transformed side by side, so that the CPU works on several in one instruction.
inline constexpr std::size_t kLanes = 8;

/// kLanes complex sequences of one length. Number i of lane l has its parts at [i * kLanes + l].
struct ComplexLanes {
    float* real;
    float* imaginary;
};

/// Discrete Fourier transform of any length: X[k] = sum over j of x[j] exp(-2 pi i j k / length). Lengths
/// with a prime factor above kLargestFactor take about five times as long as others, and no longer.
///
/// Threads: one object serves any number, each with a scratch of its own.
class FourierLanes {
public:
    static constexpr std::size_t kLargestFactor = 31;

    /// @param length At least 1.
    explicit FourierLanes(std::size_t length);
    FourierLanes(FourierLanes&&) noexcept;
    ~FourierLanes();

    std::size_t length() const { return length_; }
    /// Floats that transform() needs beside the lanes.
    std::size_t scratch() const;

    /// In place. With the parts exchanged it is the inverse, times the length.
    void transform(ComplexLanes lanes, float* scratch) const;

private:
    class Chirp;

    /// One factor of the length: a butterfly over `radix` parts, then a turn of each result.
    struct Stage {
        std::size_t radix;
        std::size_t blocks; ///< Length left, by the radix.
        std::size_t stride; ///< Product of the radices before.
        std::vector<std::complex<float>>
            turns; ///< Of each block: radix - 1, or radix squared of a plain one.
    };

    static Stage make_stage(std::size_t radix, std::size_t left, std::size_t stride);
    template <std::size_t kRadix>
    static void run(Stage const& stage, ComplexLanes const& from, ComplexLanes const& to);
    static void run_plain(Stage const& stage, ComplexLanes const& from, ComplexLanes const& to);

    std::size_t length_;
    std::vector<Stage> stages_;
    std::vector<Chirp> chirp_; ///< One for a length with a large prime factor, which has no stages.
};

} // namespace umbrixlib::toolkit
