// SPDX-License-Identifier: MIT
#include "texture_bytes.h"

#include <cmath>

namespace umbrixlib::examples {
namespace {

std::uint8_t byte(double share)
{
    return static_cast<std::uint8_t>(std::floor(share * 255.0 + 0.5));
}

} // namespace

std::vector<std::uint8_t> height_bytes(std::vector<float> const& heights)
{
    std::vector<std::uint8_t> bytes;
    bytes.reserve(heights.size());
    for (float const height : heights) {
        bytes.push_back(byte(static_cast<double>(height)));
    }
    return bytes;
}

std::vector<std::uint8_t> normal_bytes(std::vector<float> const& heights, int side, double relief)
{
    auto const height = [&](int x, int y) {
        int const index = (y + side) % side * side + (x + side) % side;
        return static_cast<double>(heights[static_cast<std::size_t>(index)]);
    };
    double const scale = 0.5 * relief * side;
    std::vector<std::uint8_t> bytes;
    bytes.reserve(heights.size() * 4);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            double const nx = (height(x - 1, y) - height(x + 1, y)) * scale;
            double const ny = (height(x, y - 1) - height(x, y + 1)) * scale;
            double const length = std::sqrt(nx * nx + ny * ny + 1.0);
            for (double const component : {nx / length, ny / length, 1.0 / length}) {
                bytes.push_back(byte(0.5 * component + 0.5));
            }
            bytes.push_back(byte(height(x, y)));
        }
    }
    return bytes;
}

} // namespace umbrixlib::examples
