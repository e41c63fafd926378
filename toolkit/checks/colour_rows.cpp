// SPDX-License-Identifier: MIT
#include "toolkit/checks/colour_rows.h"

namespace umbrixlib::toolkit {

void ColourRows::read(std::size_t y, std::vector<float>& to) const
{
    std::size_t const step = static_cast<std::size_t>(picture_.channels);
    std::size_t const kept = colours();
    to.resize(width() * kept);
    with_samples(picture_, [&](auto samples) {
        auto const* from = samples.data() + y * width() * step;
        float* out = to.data();
        for (std::size_t x = 0; x < width(); ++x, from += step, out += kept) {
            for (std::size_t c = 0; c < kept; ++c) {
                out[c] = static_cast<float>(to_number(from[c]));
            }
        }
    });
}

} // namespace umbrixlib::toolkit
