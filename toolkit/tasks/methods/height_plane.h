// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/observer.h"
#include "toolkit/relief/padded_heights.h"
#include "toolkit/settings/settings.h"
#include "toolkit/tasks/prepared_input.h"

#include <optional>
#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// Heights that horizons are looked for over.
struct ReliefInput {
    int width = 0;
    int height = 0;
    std::vector<float> heights; ///< In texels.
    Borders borders{};
    double reach = 0;                 ///< Of the settings' radius, in texels.
    float h_scale = 0;                ///< In image widths.
    std::optional<HeightRange> range; ///< What became 0 and 1, if other heights did.

    HeightPlane plane() const { return {heights.data(), width, height, borders}; }
};

/// Takes @p input for heights, as the settings and the file itself have them, and lets go of its picture.
ReliefInput relief_input(PreparedInput& input, Settings const& settings, std::string const& name,
                         Observer& observer);

} // namespace umbrixlib::toolkit
