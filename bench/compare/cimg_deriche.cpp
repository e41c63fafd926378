// SPDX-License-Identifier: MIT
#include "cimg_deriche.h"

#define cimg_display 0
#define cimg_use_openmp 0
#include <CImg.h>

namespace umbrixlib::bench {

void cimg_deriche(std::vector<float>& pixels, int side, float sigma)
{
    auto const size = static_cast<unsigned>(side);
    bool const is_shared = true;
    cimg_library::CImg<float> image(pixels.data(), size, size, 1, 1, is_shared);
    image.deriche(sigma, 0, 'x').deriche(sigma, 0, 'y');
}

} // namespace umbrixlib::bench
