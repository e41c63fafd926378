// SPDX-License-Identifier: MIT
#pragma once

#include "work/map_work.h"
#include "work/picture_parts.h"
#include "work/show_maker.h"

#include <cstddef>
#include <optional>
#include <string>

/// @file
/// Small pictures to make previews of. What a whole picture tells, or what is worked out of all of it, is
/// settled before: its kind, its green, the range of its heights, the highest of them.

namespace umbrix_desktop {

/// Longest side of a preview.
inline constexpr int kPreviewSide = 512;

/// What all of a picture has to be looked at for.
struct Ground {
    toolkit::Kind kind = toolkit::Kind::kHeightMap;
    std::optional<toolkit::NormalY> normal_y; ///< Of a normal map; empty: as its name tells.
    toolkit::Attributes attributes;           ///< How its numbers are to be read.
    toolkit::HeightRange range;               ///< What becomes 0 and 1.
    double unit = 1;                          ///< What 0 to 1 spans of a height.
    std::size_t highest = 0;                  ///< A texel that none is higher than.
};

/// Looks at all of a picture. A Failure if it has no such heights.
Ground ground_of(Origin const& whole, toolkit::Observer& observer);

/// A picture to make a preview of, the settings for it, and where the preview is in what is made.
struct Part {
    toolkit::DecodedImage image;
    toolkit::Settings settings;
    Cut cut; ///< The preview, of what is made of the image.
};

/// A part of a picture of which each texel of the preview is made as it is of the whole, to the bit.
///
/// Maps with light alone need a texel around the visible ones. The occlusion counts in shares of the sides
/// and of the width, so its parts have the sides of the whole divided by the same power of two, which moves
/// no rounding; rays that come over a border of the picture go on as in no part, so there is none there. A
/// texel that no ray comes to has the height of the highest of all, which is open to all rays.
///
/// Empty where there is none, or none that is much quicker than the whole: filters reach over all texels.
/// @param visible In the whole.
/// @param occlusion Whether the occlusion counts.
std::optional<Part> exact_part(Origin const& whole, Ground const& ground, Cut const& visible, bool occlusion);

/// How many times smaller a preview of all is. 1 if the picture is no larger than a preview.
int reduction_of(int width, int height);

/// All of a picture, that many times smaller, and settings that keep its relief.
Part reduced_part(Origin const& whole, Ground const& ground, int factor);

} // namespace umbrix_desktop
