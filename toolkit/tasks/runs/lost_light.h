// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/observer.h"
#include "toolkit/pictures/picture.h"
#include "toolkit/settings/graphics_settings.h"
#include "toolkit/settings/settings.h"

#include <string>

namespace umbrixlib::toolkit {

/// What a map was made of.
struct MapOrigin {
    Picture const& source; ///< As make_umbrix_map() took it; without samples if layers were its heights.
    Settings const& settings;
    Kind kind;                          ///< Of the source.
    bool normals_follow_relief = false; ///< A lower relief would have given a flatter normal map, too.
    Graphics const& graphics;
};

/// Notes what @p map has lost at its ends, if that is much: a third of its samples is black, or in a tenth of
/// its texels a light is cut off at white. If a lower relief would halve that, the note says which: maps of a
/// few pieces of the source are made to find it. Without such a loss the map is looked through once.
/// @param name What messages call the source.
void note_lost_light(Picture const& map, std::string const& name, MapOrigin const& origin,
                     Observer& observer);

} // namespace umbrixlib::toolkit
