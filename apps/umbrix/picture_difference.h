// SPDX-License-Identifier: MIT
#pragma once

#include "picture.h"

#include <string>

namespace umbrix_cli {

/// The largest difference of each channel of two pictures of one shape, of 255.
std::vector<int> largest_difference(Picture const& a, Picture const& b);

/// "red 3, green 0, blue 12", and alpha if there is a fourth.
std::string in_words(std::vector<int> const& differences);

} // namespace umbrix_cli
