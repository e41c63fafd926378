// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/observer.h"
#include "toolkit/pictures/heights/height_reading.h"
#include "toolkit/pictures/picture.h"

#include <optional>
#include <string>

namespace umbrixlib::toolkit {

/// Brings the heights of a height map, whose colours they are, or of a normal map, whose alpha they are, to
/// 0..1 in place. Pictures that need nothing stay as they are; whole numbers stay whole unless a range or
/// luma is asked for. An alpha that holds no heights stays.
/// @param name What messages call the picture.
/// @return What became 0 and 1, if that is not 0 and 1.
///
/// A Failure if there is no such channel, if texels are NaN or infinite and nothing replaces them, or if
/// heights lie outside 0..1 and no range is given.
std::optional<HeightRange> take_heights(Picture& height_map, HeightReading const& reading,
                                        std::string const& name, Observer& observer);
std::optional<HeightRange> take_heights_in_alpha(Picture& normal_map, HeightReading const& reading,
                                                 std::string const& name, Observer& observer);

/// The same for the colours of any picture, each by itself, whatever they are and whatever channel is asked
/// for.
/// @param bounded They have to be finite, and in 0..1 in the end. If not, they may stay what they are.
std::optional<HeightRange> take_colours(Picture& picture, HeightReading const& reading, bool bounded,
                                        std::string const& name, Observer& observer);

/// One channel of @p picture, in its sample type, or mean or luma in floats. A Failure if there is none.
Picture channel_of(Picture const& picture, HeightChannel channel, std::string const& name);

/// Makes flat ground of the texels of @p normal_map, coded as colours are, whose colours are not all finite,
/// and says how many they were. A Failure if there are any and @p allowed is false.
std::size_t flatten_invalid_normals(Picture& normal_map, bool allowed, std::string const& name);

} // namespace umbrixlib::toolkit
