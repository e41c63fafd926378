// SPDX-License-Identifier: MIT
#include "common/exp_table.h"

#include "common/exponential.h"
#include "common/rounding.h"
#include "common/thread_share.h"

#include <cmath>

namespace umbrixlib::detail {
namespace {

/// Index of the last entry. A table too long for an int to count has the weight 1 alone, as one of no length.
int last_entry(float sigma)
{
    int const last = sigma > 0.0f ? to_int(std::ceil(wide(sigma))) : 0;
    return last > 0 ? last : 0;
}

/// exp of @p exponent, which is not above 0. Within 1.25 units in the last place of the exact weight in
/// tables from a sigma of 1 on, within 0.8 in that of `kRangeSigma`.
float weight(double exponent)
{
    constexpr double kVanishing = -104.0; // from here on nearer to 0 than to the smallest float
    if (exponent <= kVanishing) {
        return 0.0f;
    }
    double const halvings = std::floor(exponent * kLog2OfE + 0.5);
    float const rest = narrow(exponent - halvings * wide(kLn2));
    float sum = 0.0f;
    for (float const coefficient : kExpPolynomial) {
        sum = std::fma(sum, rest, coefficient);
    }
    return narrow(std::ldexp(wide(sum), to_int(halvings)));
}

} // namespace

void exp_table(float sigma, float* table, int thread, int threads)
{
    if (!has_share(thread, threads)) {
        return;
    }
    int const last = last_entry(sigma);
    for (long long i = thread; i <= last; i += threads) {
        // The exponent is -i * i / (2 * s * s) with s a third of sigma. Entry 0 must not divide by a sigma of
        // 0.
        double const share = i == 0 ? 0.0 : static_cast<double>(i) / wide(sigma);
        table[i] = weight(-4.5 * share * share);
    }
}

} // namespace umbrixlib::detail
