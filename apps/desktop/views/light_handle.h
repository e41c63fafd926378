// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/tasks/light/channel_weights.h"

#include <QPointF>
#include <QRectF>

namespace umbrix_desktop {

/// The circle on which lights stand that are level with the picture: around the middle of @p pane.
double horizon_radius(QRectF const& pane);

/// Where in @p pane the handle of @p light stands: in its direction from the middle, the nearer the higher it
/// is, as the foot of a pointer of that length does.
QPointF place_of_light(umbrixlib::toolkit::Light const& light, QRectF const& pane);

/// The light whose handle stands nearest to @p place; degrees are whole, and azimuths are 0 to 359.
umbrixlib::toolkit::Light light_at(QPointF place, QRectF const& pane);

} // namespace umbrix_desktop
