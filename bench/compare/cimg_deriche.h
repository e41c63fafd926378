// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

namespace umbrixlib::bench {

/// CImg's recursive Gaussian, columns and rows, in place. The border is taken to go on for ever.
void cimg_deriche(std::vector<float>& pixels, int side, float sigma);

} // namespace umbrixlib::bench
