// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/observer.h"
#include "toolkit/integration/heights_of_differences.h"
#include "toolkit/pictures/picture.h"
#include "toolkit/settings/settings.h"
#include "toolkit/tasks/methods/slopes_of_normals.h"

#include <optional>
#include <string>

namespace umbrixlib::toolkit {

/// A normal map that a task reads slopes from.
struct SlopeSource {
    Picture const& normals;  ///< Of three channels or four.
    std::string const& name; ///< Of its file, for messages, and whose ending may tell where green points.
    Settings const& settings;
    std::optional<NormalY> normal_y; ///< As asked for.
};

/// What is asked for, then what the file tells, then the ending of its name, then the settings.
NormalY green_of_input(SlopeSource const& source);

/// What the heights of @p source differ by over two texels, times @p n_scale, which is not 0. Odd normals
/// count as flat ground, with a note; those that are no numbers are a Failure unless the settings replace
/// them.
/// @param reading How samples were read.
CentralDifferences read_differences(SlopeSource const& source, NormalY green, double n_scale,
                                    NormalReading& reading, Observer& observer);

} // namespace umbrixlib::toolkit
