// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The exponential function behind the weights of the bilateral filter. exp(x) is 2^k * p(x - k * ln 2) with
/// k the integer nearest to x / ln 2; p is evaluated by Horner's rule in float, every step one fused
/// multiply-add. `GenerateExp` and the filter's inner loop share it, so that the loop can make weights with
/// the bits of the table instead of fetching them.

namespace umbrixlib::detail {

/// The sigma of the range table that the pipelines bring.
inline constexpr float kRangeSigma = 128.0f;

/// Coefficients of r^6 down to r^0. Relative error below 3.1e-9 for |r| up to ln(2) / 2.
inline constexpr float kExpPolynomial[] = {
    0x1.6a23d0p-10f, 0x1.123a20p-7f, 0x1.5558f2p-5f, 0x1.555492p-3f, 0x1.fffffcp-2f, 1.0f, 1.0f};

/// ln 2 to the nearest float, which is too large by as little as 2e-9.
inline constexpr float kLn2 = 0x1.62e430p-1f;
inline constexpr double kLog2OfE = 1.44269504088896340736;

} // namespace umbrixlib::detail
