// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"

namespace umbrixlib::toolkit {

constexpr char const* kBlueNote = "its blue is made from red and green, as a normal has it";

/// A picture of red and green of normals with the blue that makes them unit vectors: whole numbers are 0 to
/// 1 for -1 to 1, and floats the components themselves.
Picture with_blue(Picture const& red_and_green);

} // namespace umbrixlib::toolkit
