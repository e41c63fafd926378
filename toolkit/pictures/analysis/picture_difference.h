// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"

#include <string>

namespace umbrixlib::toolkit {

/// The largest difference of each channel of two pictures of one shape and type: of 255, rounded up.
std::vector<int> largest_difference(Picture const& a, Picture const& b);

/// "red 3, green 0, blue 12", and alpha if there is a fourth.
std::string in_words(std::vector<int> const& differences);

} // namespace umbrixlib::toolkit
