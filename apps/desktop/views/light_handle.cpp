// SPDX-License-Identifier: MIT
#include "views/light_handle.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace umbrix_desktop {

namespace {

constexpr double kRadians = std::numbers::pi / 180;

} // namespace

double horizon_radius(QRectF const& pane)
{
    return std::min(pane.width(), pane.height()) * 0.4;
}

QPointF place_of_light(umbrixlib::toolkit::Light const& light, QRectF const& pane)
{
    double const away = horizon_radius(pane) * std::cos(light.elevation_degrees * kRadians);
    return pane.center() + QPointF(away * std::cos(light.azimuth_degrees * kRadians),
                                   -away * std::sin(light.azimuth_degrees * kRadians));
}

umbrixlib::toolkit::Light light_at(QPointF place, QRectF const& pane)
{
    QPointF const off = place - pane.center();
    double const away = std::min(std::hypot(off.x(), off.y()) / horizon_radius(pane), 1.0);
    double const azimuth = std::round(std::atan2(-off.y(), off.x()) / kRadians);
    return {std::fmod(azimuth + 360, 360), std::round(std::acos(away) / kRadians)};
}

} // namespace umbrix_desktop
