// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/kind.h"
#include "toolkit/checks/normal_sums.h"

#include <cstdint>
#include <optional>

namespace umbrixlib::toolkit {

/// Where green points, as far as the slopes tell.
struct GreenTold {
    std::optional<NormalY> green; ///< Empty: they do not tell.
    double times = 1.0;           ///< How many times better they fit than with the other direction.
};
GreenTold green_of_slopes(NormalSums const& sums);

/// Flat ground that is stored in two ways.
struct MixedFlat {
    bool between_channels = false; ///< Red has one value and green the other; else a channel has both.
    std::size_t channel = 0;       ///< The one that differs, or has both.
    std::uint8_t kept = 127;       ///< What most of it has.
    Tally others{};                ///< What has the other value.
    double share = 0.0;            ///< Of those.
};
std::optional<MixedFlat> mixed_flat_of(NormalSums const& sums, std::size_t texels);

/// Adds all that is found in a normal map to @p findings.
/// @param asked   Where green should point; empty: anywhere.
/// @param dithered Flat ground has both values on purpose.
void find_in_normals(Picture const& normals, NormalSums const& sums, std::optional<NormalY> asked,
                     bool dithered, Findings& findings);

} // namespace umbrixlib::toolkit
