// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/settings/setting_table.h"

namespace umbrix_desktop {

/// Places of a slider, which are whole numbers from 0 to kPlaces, and the numbers that they stand for.
class SliderScale {
public:
    static constexpr int kPlaces = 1000;

    /// A scale is even, or finer towards 0 where the usual values lie far below the largest.
    SliderScale(double minimum, double maximum, bool is_whole, bool is_fine);

    /// The scale of the row of a number.
    static SliderScale of(umbrixlib::toolkit::SettingRow const& row);

    /// The nearest place.
    int place_of(double number) const;

    /// A number of at most three digits; the ends are the range's own.
    double number_at(int place) const;

    bool operator==(SliderScale const&) const = default;

private:
    double minimum_;
    double maximum_;
    bool is_whole_;
    bool is_fine_;
};

} // namespace umbrix_desktop
