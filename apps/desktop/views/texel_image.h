// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"
#include "views/viewport.h"

#include <QImage>
#include <string>

/// @file
/// Pictures as the screen has them. Nothing here knows a widget.

namespace umbrix_desktop {

/// Draws what of @p picture lies in @p target, which is the viewport's area in QImage::Format_RGB32; what
/// lies beside it stays. The picture may be of a part of what the viewport shows, and may have fewer texels
/// than the part has.
///
/// Where a texel takes a pixel or more, a pixel has the texel under its middle; else it has the mean of up to
/// 3 x 3 texels below it, each as a byte. Samples are shown as 0 to 255 for 0 to 1, vectors in floats for -1
/// to 1. An alpha is no part of the colours; a channel that there is not counts as full, in a grey picture as
/// the grey.
///
/// @param area The part, in texels of the viewport's picture, top row first.
void draw_texels(QImage& target, toolkit::Picture const& picture, Area const& area, Viewport const& viewport,
                 Channel channel);

/// Pixels left of @p column from @p left, the others from @p right. Both are of one size.
QImage split_at(QImage const& left, QImage const& right, int column);

/// How far each colour of @p right is from that of @p left. Both are of one size.
QImage difference_of(QImage const& left, QImage const& right);

/// The samples of a texel, top row first, in the numbers that they stand for: "height 0.5021", a normal as a
/// vector, "12, 34, 56" for other colours in bytes.
std::string texel_words(toolkit::Picture const& picture, int x, int y);

} // namespace umbrix_desktop
