// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>
#include <opencv2/core.hpp>
#include <vector>

namespace umbrixlib::bench {

/// Pixels as an OpenCV image, without a copy.
template <typename Pixel>
cv::Mat as_image(std::vector<Pixel>& pixels, int side)
{
    return {side, side, CV_32FC(static_cast<int>(sizeof(Pixel) / sizeof(float))), pixels.data()};
}

/// Largest difference of two square images of @p channels floats a pixel, @p margin pixels from the border
/// on.
template <typename Pixel>
double largest_difference(std::vector<Pixel> const& a, std::vector<Pixel> const& b, int side, int margin)
{
    constexpr int kChannels = static_cast<int>(sizeof(Pixel) / sizeof(float));
    auto const* const first = reinterpret_cast<float const*>(a.data());
    auto const* const second = reinterpret_cast<float const*>(b.data());
    float largest = 0.0f;
    for (int y = margin; y < side - margin; ++y) {
        for (int i = margin * kChannels; i < (side - margin) * kChannels; ++i) {
            auto const at = static_cast<std::ptrdiff_t>(y) * side * kChannels + i;
            largest = std::max(largest, std::fabs(first[at] - second[at]));
        }
    }
    return static_cast<double>(largest);
}

} // namespace umbrixlib::bench
