// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/integration/fourier_lanes.h"

namespace umbrixlib::toolkit {

/// A Fourier transform of any length as a convolution with a chirp, which a transform of a length with small
/// factors makes (Bluestein, "A linear filtering approach to the computation of the discrete Fourier
/// transform", 1970).
class FourierLanes::Chirp {
public:
    explicit Chirp(std::size_t length);

    std::size_t scratch() const { return 2 * kLanes * inner_.length() + inner_.scratch(); }
    void transform(ComplexLanes lanes, float* scratch) const;

private:
    std::vector<std::complex<float>> chirp_; ///< exp(-pi i j^2 / length).
    FourierLanes inner_;
    std::vector<std::complex<float>> kernel_; ///< Transform of the chirp's conjugate, by the inner length.
};

} // namespace umbrixlib::toolkit
