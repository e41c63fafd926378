// SPDX-License-Identifier: MIT
#include "common/gaussian_coefficients.h"

#include "common/float_functions.h"
#include "common/rounding.h"

namespace umbrixlib::detail {

GaussianCoefficients gaussian_coefficients(float sigma)
{
    constexpr double kSmallestSigma = wide(0.1f);
    constexpr double kAlphaTimesSigma = wide(1.695f);

    double const s = wide(sigma) < kSmallestSigma ? kSmallestSigma : wide(sigma);
    float const alpha_narrow = narrow(kAlphaTimesSigma / s);
    double const alpha = wide(alpha_narrow);
    double const ema = wide(exp(-alpha_narrow));
    double const ema2 = wide(exp(narrow(alpha * -2.0)));
    double const k = wide(narrow((1.0 - ema) * (1.0 - ema) / (alpha * 2.0 * ema + 1.0 - ema2)));

    GaussianCoefficients result{};
    result.b1 = narrow(ema * -2.0);
    result.b2 = narrow(ema2);
    result.a0 = narrow(k);
    result.a1 = narrow((alpha - 1.0) * k * ema);
    result.a2 = narrow((alpha + 1.0) * k * ema);
    result.a3 = narrow(-k * ema2);
    double const divisor = wide(result.b1) + 1.0 + ema2;
    result.edge_forward = narrow((wide(result.a0) + wide(result.a1)) / divisor);
    result.edge_backward = narrow((wide(result.a3) + wide(result.a2)) / divisor);
    return result;
}

} // namespace umbrixlib::detail
