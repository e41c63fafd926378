// SPDX-License-Identifier: MIT
#include "toolkit/checks/find_clipping.h"

#include "toolkit/checks/colour_rows.h"

#include <array>
#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

constexpr int kLevels = 256;

/// Of the texels of sound maps, at most 0.01 % lie at an end; of shipped maps with 1.1 times the contrast
/// 0.07 to 5 %.
constexpr double kLeastShare = 0.0005;

/// An end of a sound map has up to 0.9 times what the most frequent level beside it has, and a ramp as much;
/// of those with 1.1 times the contrast 2.1 to 98.
constexpr double kLeastSpike = 1.5;

/// The levels beside an end of a map that was cut have 0.33 to 3.1 times what those further inside have; the
/// rounded edge of a wall at height 0 has 97.
constexpr double kMostBeside = 10.0;

/// How many texels have each level.
struct HeightLevels {
    std::array<std::size_t, kLevels> counts{};
    Tally lowest; ///< Exactly at the ends.
    Tally highest;

    void add(HeightLevels const& other)
    {
        for (std::size_t i = 0; i < counts.size(); ++i) {
            counts[i] += other.counts[i];
        }
        lowest.add(other.lowest);
        highest.add(other.highest);
    }
};

HeightLevels levels_of(Picture const& heights)
{
    ColourRows const rows(heights);
    std::size_t const colours = rows.colours();
    double const scale = 1.0 / (full_scale(heights.type) * static_cast<double>(colours));
    auto const bands = in_bands(rows.height(), [&](RowBand const& band) {
        HeightLevels found;
        std::vector<float> row;
        for (std::size_t y = band.begin; y < band.end; ++y) {
            rows.read(y, row);
            for (std::size_t x = 0; x < rows.width(); ++x) {
                double sum = 0.0;
                for (std::size_t c = 0; c < colours; ++c) {
                    sum += static_cast<double>(row[x * colours + c]);
                }
                double const height = sum * scale;
                if (!(height >= 0.0 && height <= 1.0)) {
                    continue; // floats may be any
                }
                if (height == 0.0) {
                    found.lowest.add(x, y);
                } else if (height == 1.0) {
                    found.highest.add(x, y);
                }
                ++found.counts[static_cast<std::size_t>(
                    std::min(static_cast<int>(height * kLevels), kLevels - 1))];
            }
        }
        return found;
    });
    HeightLevels all;
    for (HeightLevels const& band : bands) {
        all.add(band);
    }
    return all;
}

/// Mean of the levels from @p begin to before @p end, counted from an end of the scale.
double mean_of(HeightLevels const& levels, bool from_top, std::size_t begin, std::size_t end)
{
    std::size_t sum = 0;
    for (std::size_t i = begin; i < end; ++i) {
        sum += levels.counts[from_top ? levels.counts.size() - 1 - i : i];
    }
    return static_cast<double>(sum) / static_cast<double>(end - begin);
}

/// The most of these levels: the one beside counts, too, where steep ground has every fourth level only.
double most_of(HeightLevels const& levels, bool from_top, std::size_t begin, std::size_t end)
{
    std::size_t most = 0;
    for (std::size_t i = begin; i < end; ++i) {
        most = std::max(most, levels.counts[from_top ? levels.counts.size() - 1 - i : i]);
    }
    return static_cast<double>(most);
}

void judge_end(HeightLevels const& levels, bool top, Picture const& heights, Findings& findings)
{
    Tally const& end = top ? levels.highest : levels.lowest;
    double const beside = mean_of(levels, top, 1, 5);
    double const most_beside = most_of(levels, top, 1, 5);
    double const inside = mean_of(levels, top, 5, 17);
    auto const many = static_cast<double>(end.count());
    if (end.share(heights.texels()) < kLeastShare || beside == 0.0 || many < kLeastSpike * most_beside ||
        beside > kMostBeside * inside) {
        return;
    }
    findings.push_back(
        {"clipped",
         fmt::format("heights are cut off at {}: {}, {:.3g} times as many as at the levels beside it",
                     top ? "white" : "black", in_words(end, heights.texels(), heights.height),
                     many / most_beside),
         end.count(), end.share(heights.texels()), end.first(heights.height)});
}

} // namespace

void find_clipping(Picture const& heights, Findings& findings)
{
    HeightLevels const levels = levels_of(heights);
    judge_end(levels, false, heights, findings);
    judge_end(levels, true, heights, findings);
}

} // namespace umbrixlib::toolkit
