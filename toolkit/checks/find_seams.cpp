// SPDX-License-Identifier: MIT
#include "toolkit/checks/find_seams.h"

#include "toolkit/checks/colour_rows.h"

#include <cmath>
#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

/// The mean step across a border of a picture that tiles is 0.1 to 1.12 of the large ones inside, over
/// shipped and photo-scanned maps; a terrain that does not tile has 24 and 31.
constexpr double kMostStepAcross = 1.6;

/// Of the steps inside, this share is smaller than a large one.
constexpr double kLargeSteps = 0.98;

/// A step across the border that is less than that of 255 is not seen, however smooth the inside is.
constexpr double kLeastStep = 1.0 / 255.0;

/// Fewer columns or rows have no large steps to compare with.
constexpr std::size_t kFewest = 16;

/// Sums of steps between neighbours.
struct StepSums {
    std::vector<double> columns; ///< From each column to the next; the last of them: to the first.
    std::vector<double> rows;    ///< From each row of a band to the next.
};

double sum_of_steps(std::vector<float> const& from, std::vector<float> const& to)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < from.size(); ++i) {
        double const step = std::abs(static_cast<double>(to[i] - from[i]));
        sum += std::isfinite(step) ? step : 0.0;
    }
    return sum;
}

void add_steps_along(std::vector<float> const& row, std::size_t colours, std::vector<double>& columns)
{
    std::size_t const width = columns.size();
    for (std::size_t x = 0; x < width; ++x) {
        float const* const here = &row[x * colours];
        float const* const next = &row[(x + 1 < width ? x + 1 : 0) * colours];
        for (std::size_t c = 0; c < colours; ++c) {
            double const step = std::abs(static_cast<double>(next[c] - here[c]));
            columns[x] += std::isfinite(step) ? step : 0.0;
        }
    }
}

StepSums steps_of(ColourRows const& rows)
{
    auto const bands = in_bands(rows.height(), [&](RowBand const& band) {
        StepSums sums{std::vector<double>(rows.width()), {}};
        std::vector<float> row;
        std::vector<float> next;
        rows.read(band.begin, row);
        for (std::size_t y = band.begin; y < band.end; ++y) {
            rows.read(y + 1 < rows.height() ? y + 1 : 0, next);
            add_steps_along(row, rows.colours(), sums.columns);
            sums.rows.push_back(sum_of_steps(row, next));
            row.swap(next);
        }
        return sums;
    });
    StepSums all{std::vector<double>(rows.width()), {}};
    for (StepSums const& band : bands) {
        for (std::size_t x = 0; x < all.columns.size(); ++x) {
            all.columns[x] += band.columns[x];
        }
        all.rows.insert(all.rows.end(), band.rows.begin(), band.rows.end());
    }
    return all;
}

/// @param steps Sums of @p summands steps each, the last across the border.
/// @param full  What stands for 1.
void judge(std::vector<double> steps, double summands, double full, char const* name, char const* borders,
           Findings& findings)
{
    if (steps.size() < kFewest) {
        return;
    }
    double const across = steps.back() / summands / full;
    steps.pop_back();
    auto const large =
        steps.begin() + static_cast<std::ptrdiff_t>(kLargeSteps * static_cast<double>(steps.size()));
    std::nth_element(steps.begin(), large, steps.end());
    double const inside = *large / summands / full;
    if (across < kLeastStep || across <= kMostStepAcross * inside) {
        return;
    }
    double const times = inside > 0.0 ? std::min(across / inside, kMostStrength) : kMostStrength;
    findings.push_back(
        {name,
         fmt::format("the {} borders do not meet: the step across them is {:.2g} of 255, {:.3g} "
                     "times the large ones inside",
                     borders, across * 255.0, times),
         0, times});
}

} // namespace

void find_seams(Picture const& picture, bool sideways, bool up_and_down, Findings& findings)
{
    ColourRows const rows(picture);
    StepSums const sums = steps_of(rows);
    double const full = full_scale(picture.type);
    auto const colours = static_cast<double>(rows.colours());
    if (sideways) {
        judge(sums.columns, static_cast<double>(rows.height()) * colours, full, "seam-x", "left and right",
              findings);
    }
    if (up_and_down) {
        judge(sums.rows, static_cast<double>(rows.width()) * colours, full, "seam-y", "upper and lower",
              findings);
    }
}

} // namespace umbrixlib::toolkit
