// SPDX-License-Identifier: MIT
#include "views/viewport.h"

#include <algorithm>
#include <cmath>

namespace umbrix_desktop {

namespace {

/// The pixel at which tiles begin whose place @p centre is in the middle of @p area pixels.
double begin_of_tiles(int area, int texels, int tiles, double zoom, double centre)
{
    double const middle = (centre + (tiles - 1) / 2.0) * texels * zoom;
    return std::round(area / 2.0 - middle);
}

/// The centre that has the place @p texels, of all tiles, at the pixel @p pixel.
double centre_for(double texels, double pixel, int area, int size, int tiles, double zoom)
{
    double const middle = texels + (area / 2.0 - pixel) / zoom;
    double const rim = (tiles - 1) / 2.0;
    return std::clamp(middle / size - rim, -rim, 1 + rim);
}

} // namespace

double Viewport::left() const
{
    return begin_of_tiles(area.width(), picture.width(), tiles, zoom, centre_x);
}

double Viewport::top() const
{
    return begin_of_tiles(area.height(), picture.height(), tiles, zoom, centre_y);
}

QPointF Viewport::texels_at(QPointF pixels) const
{
    return {(pixels.x() - left()) / zoom, (pixels.y() - top()) / zoom};
}

std::optional<QPoint> Viewport::texel_under(QPointF pixels) const
{
    QPointF const place = texels_at(pixels);
    if (place.x() < 0 || place.y() < 0 || place.x() >= tiles * picture.width() ||
        place.y() >= tiles * picture.height()) {
        return std::nullopt;
    }
    return QPoint(static_cast<int>(place.x()) % picture.width(),
                  static_cast<int>(place.y()) % picture.height());
}

Viewport viewport_of(View const& view, QSize area, QSize picture)
{
    Viewport viewport{area, picture, view.tiles, view.zoom, view.centre_x, view.centre_y};
    if (view.zoom <= 0) {
        double const across = area.width() / (1.0 * view.tiles * picture.width());
        double const down = area.height() / (1.0 * view.tiles * picture.height());
        viewport.zoom = std::min({across, down, kMostZoom});
        viewport.centre_x = viewport.centre_y = 0.5;
    }
    return viewport;
}

View zoomed(View view, Viewport const& viewport, QPointF pixels, int steps)
{
    // A size between two that steps lead to counts as the one behind it, seen from where it goes.
    double const now = 2 * std::log2(viewport.zoom);
    double const from = steps > 0 ? std::floor(now + 1e-9) : std::ceil(now - 1e-9);
    QPointF const kept = viewport.texels_at(pixels);
    view.zoom = std::clamp(std::exp2((from + steps) / 2), kLeastZoom, kMostZoom);
    view.centre_x = centre_for(kept.x(), pixels.x(), viewport.area.width(), viewport.picture.width(),
                               viewport.tiles, view.zoom);
    view.centre_y = centre_for(kept.y(), pixels.y(), viewport.area.height(), viewport.picture.height(),
                               viewport.tiles, view.zoom);
    return view;
}

View at_full_size(View view, Viewport const& viewport)
{
    view.zoom = 1;
    view.centre_x = viewport.centre_x;
    view.centre_y = viewport.centre_y;
    return view;
}

View panned(View view, Viewport const& viewport, QPointF by)
{
    double const rim = (viewport.tiles - 1) / 2.0;
    view.zoom = viewport.zoom;
    view.centre_x =
        std::clamp(viewport.centre_x - by.x() / viewport.zoom / viewport.picture.width(), -rim, 1 + rim);
    view.centre_y =
        std::clamp(viewport.centre_y - by.y() / viewport.zoom / viewport.picture.height(), -rim, 1 + rim);
    return view;
}

std::optional<Area> visible_area(Viewport const& viewport)
{
    QPointF const first = viewport.texels_at({0, 0});
    QPointF const last = viewport.texels_at({1.0 * viewport.area.width(), 1.0 * viewport.area.height()});
    int const left = std::clamp(static_cast<int>(std::floor(first.x())), 0, viewport.picture.width());
    int const top = std::clamp(static_cast<int>(std::floor(first.y())), 0, viewport.picture.height());
    int const right = std::clamp(static_cast<int>(std::ceil(last.x())), 0, viewport.picture.width());
    int const bottom = std::clamp(static_cast<int>(std::ceil(last.y())), 0, viewport.picture.height());
    Area const area{left, top, right - left, bottom - top};
    bool const is_all = area.width == viewport.picture.width() && area.height == viewport.picture.height();
    if (viewport.tiles > 1 || is_all || area.width <= 0 || area.height <= 0) {
        return std::nullopt;
    }
    return area;
}

} // namespace umbrix_desktop
