// SPDX-License-Identifier: MIT
#include "toolkit/checks/find_light.h"

#include "toolkit/checks/colour_rows.h"

#include <array>
#include <cmath>
#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

/// A normal that is longer is none. Those of 8 bits, and what filters leave of them, are not all of length 1.
constexpr double kMostLength = 1.02;

/// Bytes are cut off, rounded, or have a step of noise.
constexpr double kStepsInBytes = 1.5 / 255.0;
constexpr double kStepsInMore = 1.5 / 65535.0;
constexpr double kStepsInHalves = 1e-3;

/// Of the texels of maps that were made of normal maps of other lengths a few are too bright.
constexpr double kLeastShare = 0.0005;

using Three = std::array<double, 3>;

/// Lengths of the vectors of the three channels, and their directions' component out of the surface.
Three const kLengths{std::sqrt(11.0 / 6.0), 1.0, 1.0};
Three const kUp{std::sqrt(2.0 / 11.0), std::sqrt(1.0 / 3.0), std::sqrt(1.0 / 3.0)};

/// Cosines of the angles between the directions: of red and the others, of green and blue.
double const kRedToOthers = (-0.5 + 1.0 / 3.0) / std::sqrt(11.0 / 6.0);
constexpr double kGreenToBlue = 0.0;

double cosine_between(std::size_t a, std::size_t b)
{
    return a == b ? 1.0 : a == 0 || b == 0 ? kRedToOthers : kGreenToBlue;
}

/// What a channel asks of the cosine of the angle between its direction and the normal.
class NeededCosine {
public:
    NeededCosine(Modes mode, double slack) : mode_(mode), slack_(slack) {}

    double operator()(std::size_t channel, double light) const
    {
        double const least = light - slack_;
        if (!(least > 0.0)) {
            return 0.0; // what is black can be hidden
        }
        switch (mode_) {
        case Modes_UnitBasis:
            return least;
        case Modes_FlatIsFull:
            return least * kUp[channel];
        case Modes_Squared:
            return std::sqrt(least);
        default:
            return least / kLengths[channel];
        }
    }

private:
    Modes mode_;
    double slack_;
};

/// Square of the length of the shortest vector that has at least these components along the two directions.
double square_for_two(double first, double second, double cosine)
{
    double const a = first - cosine * second;
    double const b = second - cosine * first;
    double const rest = 1.0 - cosine * cosine;
    return a >= 0.0 && b >= 0.0 && rest > 0.0 ? (a * first + b * second) / rest : 0.0;
}

/// The same along all three directions. Method: the Lagrange dual of the least norm under lower bounds; its
/// largest value over the sets of bounds that are met exactly is the answer.
double square_for(Three const& needed)
{
    double square = 0.0;
    for (double const each : needed) {
        square = std::max(square, each * each);
    }
    for (std::size_t a = 0; a < 3; ++a) {
        for (std::size_t b = a + 1; b < 3; ++b) {
            if (needed[a] > 0.0 && needed[b] > 0.0) {
                square = std::max(square, square_for_two(needed[a], needed[b], cosine_between(a, b)));
            }
        }
    }
    if (needed[0] <= 0.0 || needed[1] <= 0.0 || needed[2] <= 0.0) {
        return square;
    }
    // Green and blue stand at right angles.
    double const r = kRedToOthers;
    double const rest = 1.0 - 2.0 * r * r;
    double const red = (needed[0] - r * (needed[1] + needed[2])) / rest;
    double const green = needed[1] - r * red;
    double const blue = needed[2] - r * red;
    bool const all_count = red >= 0.0 && green >= 0.0 && blue >= 0.0;
    return all_count ? std::max(square, red * needed[0] + green * needed[1] + blue * needed[2]) : square;
}

double slack_in(SampleType type)
{
    return type == SampleType::kUint8  ? kStepsInBytes
           : type == SampleType::kHalf ? kStepsInHalves
                                       : kStepsInMore;
}

struct LightSums {
    Tally impossible;
    double largest = 0.0; ///< Square of the longest normal that is needed.
};

} // namespace

void find_impossible_light(Picture const& map, Modes mode, Findings& findings)
{
    ColourRows const rows(map);
    double const slack = slack_in(map.type);
    NeededCosine const needed(mode, slack);
    double const scale = 1.0 / full_scale(map.type);
    bool const never_negative = mode == Modes_FlatIsFull || mode == Modes_Squared;
    auto const bands = in_bands(rows.height(), [&](RowBand const& band) {
        LightSums sums;
        std::vector<float> row;
        for (std::size_t y = band.begin; y < band.end; ++y) {
            rows.read(y, row);
            for (std::size_t x = 0; x < rows.width(); ++x) {
                Three cosines{};
                bool below = false;
                for (std::size_t c = 0; c < 3; ++c) {
                    double const light = static_cast<double>(row[3 * x + c]) * scale;
                    cosines[c] = needed(c, light);
                    below = below || light < -slack;
                }
                double const square = square_for(cosines);
                if (square > kMostLength * kMostLength || (below && never_negative)) {
                    sums.impossible.add(x, y);
                    sums.largest = std::max(sums.largest, square);
                }
            }
        }
        return sums;
    });
    LightSums all;
    for (LightSums const& band : bands) {
        all.impossible.add(band.impossible);
        all.largest = std::max(all.largest, band.largest);
    }
    if (all.impossible.share(map.texels()) < kLeastShare) {
        return;
    }
    double const length = std::sqrt(all.largest);
    findings.push_back(
        {"impossible-light",
         fmt::format("no surface has the light of {}; the brightest would need a normal of length "
                     "{:.3g}",
                     in_words(all.impossible, map.texels(), map.height), length),
         all.impossible.count(), length, all.impossible.first(map.height)});
}

} // namespace umbrixlib::toolkit
