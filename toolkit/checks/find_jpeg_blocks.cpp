// SPDX-License-Identifier: MIT
#include "toolkit/checks/find_jpeg_blocks.h"

#include "toolkit/base/all_threads.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <numbers>

namespace umbrixlib::toolkit {

namespace {

constexpr std::size_t kSide = 8;

/// The mean is at most 0.13 for maps that were never JPEG, and at least 0.52 for the frequencies of which
/// JPEG of quality 90 keeps enough.
constexpr double kLeastMean = 0.35;

/// Of ten frequencies, at least five have it at quality 90 and in the smoothest map; none in others.
constexpr std::size_t kFewestFrequencies = 3;
constexpr std::size_t kMostOnShiftedGrid = 1;

/// Smaller steps are lost in the rounding to 8 bits, and as little seen.
constexpr int kLeastStep = 3;
constexpr int kMostStep = 64;

/// A mean over fewer coefficients than this is chance, and so is one without some beyond the first multiple.
constexpr std::size_t kFewestCoefficients = 100;
constexpr std::size_t kFewestFar = 30;

constexpr std::size_t kMostBlocks = 2000;
constexpr std::size_t kBlocksOfSearch = 600;

struct Frequency {
    std::size_t down;
    std::size_t along;
};

/// The five in front are looked at on all grids: smooth maps have little of the others.
constexpr std::array<Frequency, 10> kFrequencies{
    {{1, 1}, {0, 2}, {2, 0}, {0, 1}, {1, 0}, {1, 2}, {2, 1}, {0, 3}, {3, 0}, {2, 2}}};
constexpr std::size_t kOfSearch = 5;
constexpr std::size_t kFewestOfSearch = 2;

/// Pictures of few levels are likely on many grids, and JPEG has one.
constexpr std::ptrdiff_t kMostLikely = 8;

using CosineTable = std::array<std::array<double, kSide>, 4>;

CosineTable cosine_table()
{
    CosineTable table{};
    for (std::size_t u = 0; u < table.size(); ++u) {
        double const scale = u == 0 ? std::sqrt(1.0 / 8.0) : 0.5;
        for (std::size_t x = 0; x < kSide; ++x) {
            table[u][x] = scale * std::cos(static_cast<double>((2 * x + 1) * u) * std::numbers::pi / 16.0);
        }
    }
    return table;
}

struct GridStart {
    std::size_t x;
    std::size_t y;
};

/// The grey of a texel, of 255, with rows counted from the top, as JPEG counts them.
template <typename Sample>
class GreyTexels {
public:
    GreyTexels(Picture const& picture, std::span<Sample const> samples)
        : picture_(picture), samples_(samples), scale_(255.0 / full_scale(picture.type))
    {
    }

    double at(std::size_t x, std::size_t y) const
    {
        Sample const* const texel = texel_at(x, y);
        double const grey =
            picture_.channels < 3
                ? to_number(texel[0])
                : 0.299 * to_number(texel[0]) + 0.587 * to_number(texel[1]) + 0.114 * to_number(texel[2]);
        return grey * scale_;
    }

    /// Whether a colour is at the dark end of the scale. Blue of normals is often near the other.
    bool has_black(std::size_t x, std::size_t y) const
    {
        Sample const* const texel = texel_at(x, y);
        return std::any_of(texel, texel + (picture_.channels < 3 ? 1 : 3),
                           [](Sample each) { return to_number(each) <= 0.0; });
    }

private:
    Sample const* texel_at(std::size_t x, std::size_t y) const
    {
        std::size_t const row = static_cast<std::size_t>(picture_.height) - 1 - y;
        return &samples_[(row * static_cast<std::size_t>(picture_.width) + x) *
                         static_cast<std::size_t>(picture_.channels)];
    }

    Picture const& picture_;
    std::span<Sample const> samples_;
    double scale_;
};

/// The coefficients of some blocks, frequency by frequency.
using Coefficients = std::array<std::vector<double>, kFrequencies.size()>;

Coefficients coefficients_of(Picture const& picture, GridStart start, std::size_t most_blocks)
{
    static CosineTable const table = cosine_table();
    std::size_t const across = (static_cast<std::size_t>(picture.width) - start.x) / kSide;
    std::size_t const down = (static_cast<std::size_t>(picture.height) - start.y) / kSide;
    std::size_t const step = std::max<std::size_t>(across * down / most_blocks, 1);
    Coefficients found;
    with_samples(picture, [&]<typename Sample>(std::span<Sample const> samples) {
        GreyTexels<Sample> const greys(picture, samples);
        for (std::size_t block = 0; block < across * down; block += step) {
            std::size_t const left = start.x + block % across * kSide;
            std::size_t const top = start.y + block / across * kSide;
            std::array<std::array<double, 4>, kSide> rows{}; // transformed along x
            bool is_cut = false;
            for (std::size_t y = 0; y < kSide; ++y) {
                for (std::size_t x = 0; x < kSide; ++x) {
                    is_cut = is_cut || greys.has_black(left + x, top + y);
                    double const grey = greys.at(left + x, top + y);
                    for (std::size_t u = 0; u < 4; ++u) {
                        rows[y][u] += grey * table[u][x];
                    }
                }
            }
            if (is_cut) {
                continue; // what JPEG made of it lay beyond the end
            }
            for (std::size_t f = 0; f < kFrequencies.size(); ++f) {
                double sum = 0.0;
                for (std::size_t y = 0; y < kSide; ++y) {
                    sum += rows[y][kFrequencies[f].along] * table[kFrequencies[f].down][y];
                }
                found[f].push_back(sum);
            }
        }
    });
    return found;
}

/// How well @p coefficients are multiples of the step that suits them best.
struct BestStep {
    double mean = 0.0; ///< 1: all are.
    int step = 0;
};

BestStep best_step(std::vector<double> coefficients)
{
    std::ranges::transform(coefficients, coefficients.begin(), [](double each) { return std::abs(each); });
    std::ranges::sort(coefficients, std::greater());
    BestStep best;
    for (int step = kLeastStep; step <= kMostStep; ++step) {
        auto const beyond = [&](double times) {
            return static_cast<std::size_t>(
                std::ranges::lower_bound(coefficients, times * step, std::greater()) - coefficients.begin());
        };
        std::size_t const count = beyond(0.5);
        if (count < kFewestCoefficients || beyond(1.5) < kFewestFar) {
            continue;
        }
        double sum = 0.0;
        double const per_step = 1.0 / step;
        for (std::size_t i = 0; i < count; ++i) {
            double const steps = coefficients[i] * per_step;
            sum += std::abs(steps - static_cast<double>(static_cast<int>(steps + 0.5)));
        }
        double const mean = 1.0 - 4.0 * sum / static_cast<double>(count); // 0 where any is as likely
        if (mean > best.mean) {
            best = {mean, step};
        }
    }
    return best;
}

/// The steps of those frequencies of a grid that have one, among the first @p frequencies.
std::vector<int> steps_of_grid(Picture const& picture, GridStart start, std::size_t blocks,
                               std::size_t frequencies)
{
    Coefficients const all = coefficients_of(picture, start, blocks);
    std::vector<int> steps;
    for (std::size_t f = 0; f < frequencies; ++f) {
        if (BestStep const best = best_step(all[f]); best.mean >= kLeastMean) {
            steps.push_back(best.step);
        }
    }
    return steps;
}

/// The steps of a grid that has blocks; empty if it has not.
std::vector<int> steps_of_blocks(Picture const& picture, GridStart start)
{
    auto const all = kFrequencies.size();
    std::vector<int> steps = steps_of_grid(picture, start, kMostBlocks, all);
    if (steps.size() < kFewestFrequencies) {
        return {};
    }
    GridStart const shifted{(start.x + 3) % kSide, (start.y + 4) % kSide};
    bool const everywhere = steps_of_grid(picture, shifted, kMostBlocks, all).size() > kMostOnShiftedGrid;
    return everywhere ? std::vector<int>() : steps;
}

} // namespace

void find_jpeg_blocks(Picture const& picture, Findings& findings)
{
    bool const whole = picture.type == SampleType::kUint8 || picture.type == SampleType::kUint16;
    if (!whole || picture.width < 4 * static_cast<int>(kSide) ||
        picture.height < 4 * static_cast<int>(kSide)) {
        return;
    }
    auto const start_of = [](std::size_t grid) { return GridStart{grid % kSide, grid / kSide}; };
    std::array<bool, kSide * kSide> is_likely{};
    on_all_threads(is_likely.size(), [&](auto const& next) {
        for (std::size_t grid = next(); grid < is_likely.size(); grid = next()) {
            is_likely[grid] =
                grid == 0 ||
                steps_of_grid(picture, start_of(grid), kBlocksOfSearch, kOfSearch).size() >= kFewestOfSearch;
        }
    });
    if (std::ranges::count(is_likely, true) > kMostLikely) {
        return;
    }
    for (std::size_t grid = 0; grid < is_likely.size(); ++grid) {
        if (!is_likely[grid]) {
            continue;
        }
        GridStart const start = start_of(grid);
        std::vector<int> steps = steps_of_blocks(picture, start);
        if (steps.empty()) {
            continue;
        }
        auto const middle = steps.begin() + static_cast<std::ptrdiff_t>(steps.size() / 2);
        std::nth_element(steps.begin(), middle, steps.end());
        findings.push_back(
            {"jpeg-blocks",
             fmt::format("its blocks of 8 x 8 texels from {}, {} on have the steps of JPEG: about {} "
                         "of 255",
                         start.x, start.y, *middle),
             0, static_cast<double>(*middle)});
        return;
    }
}

} // namespace umbrixlib::toolkit
