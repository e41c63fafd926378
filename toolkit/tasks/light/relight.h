// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/saving.h"
#include "toolkit/tasks/light/channel_weights.h"

#include <vector>

namespace umbrixlib::toolkit {

/// An Umbrix map, of any sample type, and the colours of its surface.
struct LitSurface {
    Picture map;
    Picture albedo; ///< Of the same size, three linear floats a texel; of no texels: none.
};

/// A surface in a light. Light below 0 is none, and not a number is none, too.
///
/// Without albedo the picture holds the light: grey, in three equal channels of bytes or in one channel of
/// other samples. With albedo it holds the colours that reach the eye: coded as sRGB in whole numbers, linear
/// in floats. Whole numbers are rounded to the nearest; floats may lie above 1.
Picture relit(LitSurface const& surface, Light light, Relighting const& look, SavedAs const& as = {});

/// The same with the azimuth going round once from that of @p light: @p directions pictures of one size, each
/// reduced by a whole number to at most @p cell texels a side.
std::vector<Picture> turned(LitSurface const& surface, Light light, Relighting const& look, int directions,
                            int cell, SavedAs const& as = {});

/// A contact sheet of pictures of one size and kind, row by row from the top left.
Picture contact_sheet(std::vector<Picture> const& pictures);

} // namespace umbrixlib::toolkit
