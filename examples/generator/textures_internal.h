// SPDX-License-Identifier: MIT
#pragma once

#include "shapes.h"

/// The textures, one function a file: relative height at a place on the tile, any range. Each repeats with
/// the tile.
namespace umbrixlib::examples {

double cobbles(Point p);
double bricks(Point p);
double cloth(Point p);
double dunes(Point p);
double terrain(Point p);
double noise(Point p);

} // namespace umbrixlib::examples
