// SPDX-License-Identifier: MIT
#pragma once

#include "document/state.h"
#include "work/map_work.h"

#include <QPoint>
#include <QPointF>
#include <QSize>
#include <optional>

namespace umbrix_desktop {

/// How a picture, which may be repeated, lies in an area of the screen. Pixels are those of the device.
struct Viewport {
    QSize area;            ///< Pixels.
    QSize picture;         ///< Texels of one tile.
    int tiles = 1;         ///< Each way.
    double zoom = 1;       ///< Pixels a texel, above 0.
    double centre_x = 0.5; ///< As in View; 0.5 is the middle of all tiles.
    double centre_y = 0.5;

    /// The pixel at which the first tile begins: a whole number, so texels of whole pixels stay so.
    double left() const;
    double top() const;

    /// The place in texels of all tiles, from their left and top border on, of a place in pixels.
    QPointF texels_at(QPointF pixels) const;

    /// The texel of a tile under a place in pixels; empty beside the tiles.
    std::optional<QPoint> texel_under(QPointF pixels) const;

    bool operator==(Viewport const&) const = default;
};

inline constexpr double kLeastZoom = 1.0 / 64;
inline constexpr double kMostZoom = 64;

/// Where @p view has a picture of @p picture texels in an area of @p area pixels. Neither is empty.
Viewport viewport_of(View const& view, QSize area, QSize picture);

/// @p view a number of steps nearer, or further off, with the same texel under @p pixels as before. Two steps
/// double the size; the sizes that steps lead to are the powers of 2 and those halfway.
View zoomed(View view, Viewport const& viewport, QPointF pixels, int steps);

/// @p view at one pixel a texel, with the same middle.
View at_full_size(View view, Viewport const& viewport);

/// @p view when a hand moves the picture by so many pixels.
View panned(View view, Viewport const& viewport, QPointF by);

/// What is seen of the picture; empty if that is all of it, or if it is repeated.
std::optional<Area> visible_area(Viewport const& viewport);

} // namespace umbrix_desktop
