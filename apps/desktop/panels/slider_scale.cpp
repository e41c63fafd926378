// SPDX-License-Identifier: MIT
#include "panels/slider_scale.h"

#include "toolkit/base/overloaded.h"
#include "toolkit/settings/defaults.h"

#include <algorithm>
#include <cmath>

namespace umbrix_desktop {

namespace {

/// How much finer a fine scale is towards 0: a third of the way is a twenty-seventh of the range.
constexpr double kPower = 3;

/// The share of the range below which the usual value asks for a fine scale.
constexpr double kLow = 0.1;

/// The same for a scale with 0 in its middle.
constexpr double kWideMiddle = 100;

double rounded(double number)
{
    if (number == 0) {
        return 0;
    }
    double const unit = std::pow(10, std::floor(std::log10(std::abs(number))) - 2);
    // Dividing by a power of ten that is exact keeps the digits as one would write them.
    return unit < 1 ? std::round(number * std::round(1 / unit)) / std::round(1 / unit)
                    : std::round(number / unit) * unit;
}

} // namespace

SliderScale::SliderScale(double minimum, double maximum, bool is_whole, bool is_fine)
    : minimum_(minimum), maximum_(maximum), is_whole_(is_whole), is_fine_(is_fine)
{
}

SliderScale SliderScale::of(umbrixlib::toolkit::SettingRow const& row)
{
    using umbrixlib::toolkit::Settings;
    double const range = row.maximum - row.minimum;
    auto const is_low = [&](double usual) { return (usual - row.minimum) / range < kLow; };
    bool whole = false;
    bool const fine = std::visit(
        umbrixlib::toolkit::Overloaded{
            [](auto) { return false; },
            [&](int Settings::*field) {
                whole = true;
                int const usual = umbrixlib::toolkit::kDefaults.*field;
                return usual > row.minimum && is_low(usual);
            },
            [&](float Settings::*field) {
                return is_low(static_cast<double>(umbrixlib::toolkit::kDefaults.*field));
            },
            [&](std::optional<float> Settings::*) { return row.minimum >= 0 || range > kWideMiddle; },
        },
        row.field);
    return {row.minimum, row.maximum, whole, fine};
}

int SliderScale::place_of(double number) const
{
    double share = (std::clamp(number, minimum_, maximum_) - minimum_) / (maximum_ - minimum_);
    if (is_fine_) {
        bool const two_sided = minimum_ < 0;
        double const signed_share = two_sided ? share * 2 - 1 : share;
        double const even = std::copysign(std::pow(std::abs(signed_share), 1 / kPower), signed_share);
        share = two_sided ? (even + 1) / 2 : even;
    }
    return static_cast<int>(std::lround(share * kPlaces));
}

double SliderScale::number_at(int place) const
{
    if (place <= 0 || place >= kPlaces) {
        return place <= 0 ? minimum_ : maximum_;
    }
    double share = 1.0 * place / kPlaces;
    if (is_fine_) {
        bool const two_sided = minimum_ < 0;
        double const even = two_sided ? share * 2 - 1 : share;
        double const cubed = std::pow(even, kPower);
        share = two_sided ? (cubed + 1) / 2 : cubed;
    }
    double const number = minimum_ + share * (maximum_ - minimum_);
    return std::clamp(is_whole_ ? std::round(number) : rounded(number), minimum_, maximum_);
}

} // namespace umbrix_desktop
