// SPDX-License-Identifier: MIT
#include "toolkit/tasks/methods/height_plane.h"

#include "toolkit/pictures/heights/take_heights.h"
#include "toolkit/tasks/methods/told_heights.h"

#include <algorithm>

namespace umbrixlib::toolkit {

ReliefInput relief_input(PreparedInput& input, Settings const& settings, std::string const& name,
                         Observer& observer)
{
    note_normals_as_heights(name, input.guess, observer);
    ToldHeights const told = told_heights(input.picture.attributes, height_reading_of(settings));
    ReliefInput relief;
    relief.width = input.width;
    relief.height = input.height;
    relief.borders = borders_of(settings);
    relief.range = take_for_heights(input, told.reading, name, observer);
    relief.h_scale = h_scale_of(in_unit(settings, told.unit));
    relief.reach = static_cast<double>(settings.radius) * input.width;
    Picture const heights = channel_of(input.picture, HeightChannel::kMean, name);
    input.picture = {}; // its memory is needed
    relief.heights.resize(heights.texels());
    float const texels = relief.h_scale * static_cast<float>(input.width);
    std::ranges::transform(heights.samples<float>(), relief.heights.begin(),
                           [&](float each) { return each * texels; });
    return relief;
}

} // namespace umbrixlib::toolkit
