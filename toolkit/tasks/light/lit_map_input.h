// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/observer.h"
#include "toolkit/tasks/jobs.h"
#include "toolkit/tasks/prepared_input.h"

#include <string>

namespace umbrixlib::toolkit {

/// How a picture is taken for an Umbrix map: what a job says of it.
struct MapReading {
    Modes mode;
    bool mode_is_given; ///< Else the mode that the map itself tells is taken, if it tells one.
    bool force;         ///< Take a picture that tells that it is no map, too.
};

/// The mode of the map @p name, of which @p attributes tell. A Failure if they tell that it is no map.
Modes mode_of_map(std::string const& name, Attributes const& attributes, MapReading const& reading,
                  Observer& observer);

/// The colours for a surface of @p map's size. A Failure about @p source if they are of another.
DecodedImage read_albedo(Source const& source, PreparedInput const& map, Observer& observer);

} // namespace umbrixlib::toolkit
