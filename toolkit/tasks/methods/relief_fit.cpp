// SPDX-License-Identifier: MIT
#include "toolkit/tasks/methods/relief_fit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace umbrixlib::toolkit {

namespace {

constexpr double kDegrees = 180.0 / std::numbers::pi;
constexpr int kStepsPerDecade = 12;
constexpr std::size_t kEnoughForTheGrid = 1U << 15U;
constexpr double kScaleTolerance = 1e-4; // of the logarithm
constexpr double kSigmaTolerance = 0.02; // texels
constexpr std::ptrdiff_t kBlock = 4096;
constexpr std::size_t kBlocksForOneThread = 16;

/// Sum of @p value_of(i) for i below @p count, block by block, so that threads do not change it.
template <typename Value>
double sum_of(std::size_t count, Value const& value_of)
{
    auto const end = static_cast<std::ptrdiff_t>(count);
    std::vector<double> sums(static_cast<std::size_t>((end + kBlock - 1) / kBlock));
#pragma omp parallel for schedule(static) if (sums.size() > kBlocksForOneThread)
    for (std::ptrdiff_t block = 0; block < static_cast<std::ptrdiff_t>(sums.size()); ++block) {
        double sum = 0.0;
        for (std::ptrdiff_t i = block * kBlock; i < std::min(end, (block + 1) * kBlock); ++i) {
            sum += value_of(static_cast<std::size_t>(i));
        }
        sums[static_cast<std::size_t>(block)] = sum;
    }
    double sum = 0.0;
    for (double const each : sums) {
        sum += each;
    }
    return sum;
}

double angle_degrees(double cosine)
{
    return std::acos(std::clamp(cosine, -1.0, 1.0)) * kDegrees;
}

/// Mean angle at one n-scale over every @p step-th texel.
double mean_angle_degrees(Slopes const& slopes, std::span<float3 const> wanted, Directions const& directions,
                          double n_scale, std::size_t step)
{
    double const scale_x = directions.inverted ? -n_scale : n_scale;
    double const scale_y = directions.green == NormalY::kUp ? scale_x : -scale_x;
    std::size_t const count = (wanted.size() + step - 1) / step;
    double const sum = sum_of(count, [&](std::size_t i) {
        std::size_t const texel = i * step;
        double const x = scale_x * static_cast<double>(slopes.x[texel]);
        double const y = scale_y * static_cast<double>(slopes.y[texel]);
        float3 const& other = wanted[texel];
        double const product = x * static_cast<double>(other.x) + y * static_cast<double>(other.y) +
                               static_cast<double>(other.z);
        return angle_degrees(product / std::sqrt(x * x + y * y + 1.0));
    });
    return sum / static_cast<double>(count);
}

/// Where a function with one valley is smallest between @p low and @p high (J. Kiefer, 1953).
template <typename Function>
double golden_section(Function const& value_at, double low, double high, double tolerance)
{
    constexpr double kRatio = 1.0 / std::numbers::phi;
    double left = high - kRatio * (high - low);
    double right = low + kRatio * (high - low);
    double value_left = value_at(left);
    double value_right = value_at(right);
    while (high - low > tolerance) {
        if (value_left <= value_right) {
            high = right;
            right = left;
            value_right = value_left;
            left = high - kRatio * (high - low);
            value_left = value_at(left);
        } else {
            low = left;
            left = right;
            value_left = value_right;
            right = low + kRatio * (high - low);
            value_right = value_at(right);
        }
    }
    return (low + high) / 2.0;
}

/// Stride of the grid, in texels. It is odd, so that the grid does not run along the columns of a picture
/// whose width is a power of two.
std::size_t grid_step(std::size_t texels)
{
    return texels / kEnoughForTheGrid | 1U;
}

} // namespace

Slopes slopes_of(std::span<float3 const> normals)
{
    Slopes slopes{std::vector<float>(normals.size()), std::vector<float>(normals.size())};
    for (std::size_t i = 0; i < normals.size(); ++i) {
        slopes.x[i] = normals[i].x / normals[i].z;
        slopes.y[i] = normals[i].y / normals[i].z;
    }
    return slopes;
}

FittedScale fit_scale(Slopes const& slopes, std::span<float3 const> wanted, Directions const& directions,
                      double least, double most, bool thorough)
{
    std::size_t const step = grid_step(wanted.size());
    double const low = std::log(least);
    double const high = std::log(most);
    double const width = std::numbers::ln10 / kStepsPerDecade;
    double best = low;
    double smallest = 180.0;
    for (double place = low; place < high + width / 2.0; place += width) {
        double const angle = mean_angle_degrees(slopes, wanted, directions, std::exp(place), step);
        if (angle < smallest) {
            smallest = angle;
            best = place;
        }
    }
    auto const angle_at = [&](double place) {
        return mean_angle_degrees(slopes, wanted, directions, std::exp(place), thorough ? 1 : step);
    };
    double const place =
        golden_section(angle_at, std::max(best - width, low), std::min(best + width, high), kScaleTolerance);
    return {std::exp(place), angle_at(place)};
}

double flat_mean_angle_degrees(std::span<float3 const> wanted)
{
    double const sum =
        sum_of(wanted.size(), [&](std::size_t i) { return angle_degrees(static_cast<double>(wanted[i].z)); });
    return sum / static_cast<double>(wanted.size());
}

double fit_sigma(std::function<double(double)> const& value_at)
{
    constexpr std::array kGrid{0.0, 0.5, 1.0, 1.5, 2.0, 3.0, 4.0, 6.0, 8.0, 10.0};
    std::size_t best = 0;
    double smallest = value_at(kGrid[0]);
    for (std::size_t i = 1; i < kGrid.size(); ++i) {
        double const value = value_at(kGrid[i]);
        if (value < smallest) {
            smallest = value;
            best = i;
        }
    }
    if (best == 0) {
        return 0.0; // a blur of a fraction of a texel is none
    }
    return golden_section(value_at, kGrid[best - 1], kGrid[std::min(best + 1, kGrid.size() - 1)],
                          kSigmaTolerance);
}

} // namespace umbrixlib::toolkit
