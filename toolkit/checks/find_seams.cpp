// SPDX-License-Identifier: MIT
#include "toolkit/checks/find_seams.h"

#include "toolkit/checks/colour_rows.h"

#include <array>
#include <cmath>
#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

// Lines are columns, or rows, and what is between neighbours is compared with what is between the last and
// the first. All limits stand between shipped and photo-scanned maps that tile and the same maps cropped.

/// The step across the border of a map that tiles is 0.1 to 1.12 of the large ones inside, and at most 1.08
/// of the largest; of the cropped ones that this finds 1.69 to 50, and 1.6 to 44. Terrain that does not tile
/// has 24 and 31. Where joints are sharp and few, the largest is what counts.
constexpr double kMostOfLarge = 1.6;
constexpr double kMostOfLargest = 1.3;

/// Maps that are rough all over have no larger step across a seam, but lines on its sides have less to do
/// with each other: what lines that lie side by side do not share is at most 1.34 times as much across the
/// border as between those inside that share the least, or the step is next to nothing, 0.13 of the large
/// ones; of cropped ones it is 1.51 times as much or more.
constexpr double kMostUnshared = 1.42;
constexpr double kLeastLostCorrelation = 0.1;
constexpr double kLeastOfLargeRough = 0.4;

/// Maps with large steps elsewhere: the step across the border is at most 1.16 times the largest near it; of
/// cropped ones up to 3.3 times. A joint at the border of a map that tiles has such a step as well, but its
/// sides share as much as those of the joints inside.
constexpr double kMostOfNear = 1.4;
constexpr double kLeastOfLargeNear = 0.6;
constexpr std::size_t kPartThatIsNear = 16;
constexpr std::size_t kFewestNear = 8;

/// Of the steps inside, this share is smaller than a large one, and of the correlations larger than a small
/// one.
constexpr double kUsual = 0.98;

/// A step across the border that is less than that of 255 is not seen, however smooth the inside is.
constexpr double kLeastStep = 1.0 / 255.0;

/// Fewer lines have no large steps to compare with.
constexpr std::size_t kFewestLines = 24;

constexpr std::size_t kMostColours = 3;

/// Sums over the texels of a line.
struct LineSums {
    double steps = 0.0;    ///< To the next line.
    double products = 0.0; ///< With the next line.
    double squares = 0.0;
    std::array<double, kMostColours> samples{};

    void add(float here, float next, std::size_t colour)
    {
        auto const value = static_cast<double>(here);
        auto const other = static_cast<double>(next);
        if (!std::isfinite(value + other)) {
            return;
        }
        steps += std::abs(other - value);
        products += other * value;
        squares += value * value;
        samples[colour] += value;
    }

    void add(LineSums const& other)
    {
        steps += other.steps;
        products += other.products;
        squares += other.squares;
        for (std::size_t c = 0; c < kMostColours; ++c) {
            samples[c] += other.samples[c];
        }
    }
};

struct Lines {
    std::vector<LineSums> columns;
    std::vector<LineSums> rows;
};

Lines lines_of(ColourRows const& rows)
{
    std::size_t const width = rows.width();
    std::size_t const colours = rows.colours();
    auto const bands = in_bands(rows.height(), [&](RowBand const& band) {
        Lines sums{std::vector<LineSums>(width), std::vector<LineSums>(band.end - band.begin)};
        std::vector<float> row;
        std::vector<float> above;
        rows.read(band.begin, row);
        for (std::size_t y = band.begin; y < band.end; ++y) {
            rows.read(y + 1 < rows.height() ? y + 1 : 0, above);
            LineSums& own = sums.rows[y - band.begin];
            for (std::size_t x = 0; x < width; ++x) {
                std::size_t const next = x + 1 < width ? x + 1 : 0;
                for (std::size_t c = 0; c < colours; ++c) {
                    float const here = row[x * colours + c];
                    sums.columns[x].add(here, row[next * colours + c], c);
                    own.add(here, above[x * colours + c], c);
                }
            }
            row.swap(above);
        }
        return sums;
    });
    Lines all{std::vector<LineSums>(width), {}};
    for (Lines const& band : bands) {
        for (std::size_t x = 0; x < width; ++x) {
            all.columns[x].add(band.columns[x]);
        }
        all.rows.insert(all.rows.end(), band.rows.begin(), band.rows.end());
    }
    return all;
}

/// How much a line and the next have in common: 1 if all, 0 if nothing.
double correlation(LineSums const& line, LineSums const& next, double texels)
{
    double covariance = line.products;
    double own = line.squares;
    double other = next.squares;
    for (std::size_t c = 0; c < kMostColours; ++c) {
        covariance -= line.samples[c] * next.samples[c] / texels;
        own -= line.samples[c] * line.samples[c] / texels;
        other -= next.samples[c] * next.samples[c] / texels;
    }
    constexpr double kNothing = 1e-9; // what rounding leaves of lines that are all the same
    double const together = own * other;
    return own > kNothing * line.squares && other > kNothing * next.squares ? covariance / std::sqrt(together)
                                                                            : 1.0;
}

/// The number that this share of @p numbers lies below.
double quantile(std::vector<double> numbers, double share)
{
    auto const at =
        numbers.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(numbers.size()));
    std::nth_element(numbers.begin(), at, numbers.end());
    return *at;
}

double ratio(double a, double b)
{
    return b > 0.0 ? std::min(a / b, kMostStrength) : a > 0.0 ? kMostStrength : 0.0;
}

/// What is across the border of lines, against what is inside.
struct Border {
    double step = 0.0;       ///< Mean, of full scale.
    double of_large = 0.0;   ///< In large steps inside.
    double of_largest = 0.0; ///< In the largest of them.
    double of_near = 0.0;    ///< In the largest near the border.
    double lost = 0.0;       ///< Correlation that is missing to that of the lines inside that have little.
    double unshared = 0.0;   ///< What is not shared, in that of those lines.

    bool is_seam() const
    {
        if (step < kLeastStep) {
            return false;
        }
        bool const is_large = of_large > kMostOfLarge && of_largest > kMostOfLargest;
        bool const is_strange =
            unshared > kMostUnshared && lost > kLeastLostCorrelation && of_large > kLeastOfLargeRough;
        bool const stands_out = of_near > kMostOfNear && of_large > kLeastOfLargeNear && lost > 0.0;
        return is_large || is_strange || stands_out;
    }
};

/// @param texels Of a line.
/// @param full   Sum of what stands for 1 over the colours of a texel.
Border border_of(std::vector<LineSums> const& lines, double texels, double full)
{
    std::size_t const last = lines.size() - 1;
    std::vector<double> steps;
    std::vector<double> correlations;
    for (std::size_t i = 0; i < last; ++i) {
        steps.push_back(lines[i].steps);
        correlations.push_back(correlation(lines[i], lines[i + 1], texels));
    }
    std::size_t const near = std::max(lines.size() / kPartThatIsNear, kFewestNear);
    double largest_near = 0.0;
    for (std::size_t i = 0; i < near; ++i) {
        largest_near = std::max({largest_near, steps[i], steps[last - 1 - i]});
    }
    double const across = lines[last].steps;
    double const least_shared = quantile(correlations, 1.0 - kUsual);
    double const shared = correlation(lines[last], lines[0], texels);
    return {across / (texels * full),
            ratio(across, quantile(steps, kUsual)),
            ratio(across, *std::ranges::max_element(steps)),
            ratio(across, largest_near),
            least_shared - shared,
            ratio(1.0 - shared, 1.0 - least_shared)};
}

void judge_border(std::vector<LineSums> const& lines, double texels, double full, char const* name,
                  char const* borders, Findings& findings)
{
    if (lines.size() < kFewestLines) {
        return;
    }
    Border const border = border_of(lines, texels, full);
    if (border.is_seam()) {
        findings.push_back(
            {name,
             fmt::format("the {} borders do not meet: the step across them is {:.2g} of 255, {:.3g} "
                         "times the large ones inside, and they share {:.2g} less than neighbours do",
                         borders, border.step * 255.0, border.of_large, std::max(border.lost, 0.0)),
             0, border.of_large});
    }
}

} // namespace

void find_seams(Picture const& picture, bool sideways, bool up_and_down, Findings& findings)
{
    if (!sideways && !up_and_down) {
        return;
    }
    ColourRows const rows(picture);
    Lines const lines = lines_of(rows);
    double const full = full_scale(picture.type) * static_cast<double>(rows.colours());
    if (sideways) {
        judge_border(lines.columns, static_cast<double>(rows.height()), full, "seam-x", "left and right",
                     findings);
    }
    if (up_and_down) {
        judge_border(lines.rows, static_cast<double>(rows.width()), full, "seam-y", "upper and lower",
                     findings);
    }
}

} // namespace umbrixlib::toolkit
