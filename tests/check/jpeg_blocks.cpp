// SPDX-License-Identifier: MIT
#include "jpeg_blocks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace umbrixlib::test {
namespace {

constexpr int kBlockSide = 8;

using Block = std::array<std::array<double, kBlockSide>, kBlockSide>;

// ITU-T T.81, tables K.1 and K.2.
constexpr int kLuma[kBlockSide][kBlockSide] = {
    {16, 11, 10, 16, 24, 40, 51, 61},     {12, 12, 14, 19, 26, 58, 60, 55},
    {14, 13, 16, 24, 40, 57, 69, 56},     {14, 17, 22, 29, 51, 87, 80, 62},
    {18, 22, 37, 56, 68, 109, 103, 77},   {24, 35, 55, 64, 81, 104, 113, 92},
    {49, 64, 78, 87, 103, 121, 120, 101}, {72, 92, 95, 98, 112, 100, 103, 99}};
constexpr int kChroma[kBlockSide][kBlockSide] = {
    {17, 18, 24, 47, 99, 99, 99, 99}, {18, 21, 26, 66, 99, 99, 99, 99}, {24, 26, 56, 99, 99, 99, 99, 99},
    {47, 66, 99, 99, 99, 99, 99, 99}, {99, 99, 99, 99, 99, 99, 99, 99}, {99, 99, 99, 99, 99, 99, 99, 99},
    {99, 99, 99, 99, 99, 99, 99, 99}, {99, 99, 99, 99, 99, 99, 99, 99}};

int step_of(int base, int quality)
{
    int const scale = quality < 50 ? 5000 / quality : 200 - 2 * quality;
    return std::clamp((base * scale + 50) / 100, 1, 255);
}

double basis(int frequency, int place)
{
    double const scale = frequency == 0 ? std::sqrt(0.125) : 0.5;
    return scale * std::cos((2 * place + 1) * frequency * std::numbers::pi / 16.0);
}

/// The transform along both axes, or back.
Block transformed(Block const& block, bool back)
{
    auto const weight = [&](int from, int to) { return back ? basis(from, to) : basis(to, from); };
    Block along{};
    for (int y = 0; y < kBlockSide; ++y) {
        for (int to = 0; to < kBlockSide; ++to) {
            for (int from = 0; from < kBlockSide; ++from) {
                along[y][to] += block[y][from] * weight(from, to);
            }
        }
    }
    Block result{};
    for (int to = 0; to < kBlockSide; ++to) {
        for (int x = 0; x < kBlockSide; ++x) {
            for (int from = 0; from < kBlockSide; ++from) {
                result[to][x] += along[from][x] * weight(from, to);
            }
        }
    }
    return result;
}

/// A plane of a picture, rows from the top.
struct Plane {
    int width;
    int height;
    std::vector<double> samples;

    double& at(int x, int y) { return samples[static_cast<std::size_t>(y) * width + x]; }
};

void quantise(Plane& plane, int const (&table)[kBlockSide][kBlockSide], int quality)
{
    for (int top = 0; top < plane.height; top += kBlockSide) {
        for (int left = 0; left < plane.width; left += kBlockSide) {
            Block block{};
            for (int y = 0; y < kBlockSide; ++y) {
                for (int x = 0; x < kBlockSide; ++x) {
                    block[y][x] =
                        plane.at(std::min(left + x, plane.width - 1), std::min(top + y, plane.height - 1));
                }
            }
            Block coefficients = transformed(block, false);
            for (int v = 0; v < kBlockSide; ++v) {
                for (int u = 0; u < kBlockSide; ++u) {
                    int const step = step_of(table[v][u], quality);
                    coefficients[v][u] = std::round(coefficients[v][u] / step) * step;
                }
            }
            block = transformed(coefficients, true);
            for (int y = 0; y < kBlockSide && top + y < plane.height; ++y) {
                for (int x = 0; x < kBlockSide && left + x < plane.width; ++x) {
                    plane.at(left + x, top + y) = block[y][x];
                }
            }
        }
    }
}

std::uint8_t rounded_byte(double value)
{
    return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0, 255.0)));
}

} // namespace

toolkit::Picture through_jpeg(toolkit::Picture const& picture, int quality)
{
    bool const grey = picture.channels == 1;
    std::array<Plane, 3> planes;
    planes.fill({picture.width, picture.height, std::vector<double>(picture.texels())});
    auto const texel_at = [&](int x, int y) {
        return static_cast<std::size_t>(picture.height - 1 - y) * static_cast<std::size_t>(picture.width) +
               static_cast<std::size_t>(x);
    };
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            std::uint8_t const* const texel = picture.texel(texel_at(x, y));
            double const r = texel[0];
            double const g = texel[grey ? 0 : 1];
            double const b = texel[grey ? 0 : 2];
            planes[0].at(x, y) = 0.299 * r + 0.587 * g + 0.114 * b - 128.0;
            planes[1].at(x, y) = -0.168736 * r - 0.331264 * g + 0.5 * b;
            planes[2].at(x, y) = 0.5 * r - 0.418688 * g - 0.081312 * b;
        }
    }
    quantise(planes[0], kLuma, quality);
    quantise(planes[1], kChroma, quality);
    quantise(planes[2], kChroma, quality);
    toolkit::Picture result = picture;
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            std::uint8_t* const texel = result.texel(texel_at(x, y));
            double const luma = planes[0].at(x, y) + 128.0;
            double const blue = planes[1].at(x, y);
            double const red = planes[2].at(x, y);
            texel[0] = rounded_byte(grey ? luma : luma + 1.402 * red);
            if (!grey) {
                texel[1] = rounded_byte(luma - 0.344136 * blue - 0.714136 * red);
                texel[2] = rounded_byte(luma + 1.772 * blue);
            }
        }
    }
    return result;
}

} // namespace umbrixlib::test
