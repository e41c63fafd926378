// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/integration/fourier_lanes.h"

namespace umbrixlib::toolkit {

/// Takes real sequences apart into waves, those in which the central difference with its transpose, D^T D, is
/// a factor for each. Along an axis that repeats they are sines and cosines of whole periods. Along one that
/// does not they are cosines of half periods, mirrored about the outer edges of the border texels (DCT-II).
///
/// Threads: as FourierLanes.
class AxisTransform {
public:
    /// @param length  At least 1.
    /// @param repeats The sequences go on with their other end.
    AxisTransform(std::size_t length, bool repeats);

    std::size_t length() const { return fourier_.length(); }
    std::size_t scratch() const { return 2 * kLanes * length() + fourier_.scratch(); }

    /// For each lane the real parts, and the imaginary parts, as a sequence of its own: 2 * kLanes in all. In
    /// place. Where the axis repeats, the sine of a wave stands as far from the end as its cosine from the
    /// beginning.
    void forward(ComplexLanes lanes, float* scratch) const;
    /// Back, times the length.
    void backward(ComplexLanes lanes, float* scratch) const;

    /// The factor of wave @p number; 0 where the central difference does not see it.
    double factor(std::size_t number) const;

private:
    void separate(ComplexLanes lanes) const;
    void join(ComplexLanes lanes) const;

    FourierLanes fourier_;
    bool repeats_;
    std::vector<std::complex<float>> quarter_turns_; ///< exp(-pi i k / (2 length)) where it does not repeat.
};

} // namespace umbrixlib::toolkit
