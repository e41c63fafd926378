// SPDX-License-Identifier: MIT
#include "toolkit/pictures/srgb.h"

#include "toolkit/base/all_threads.h"

#include <algorithm>
#include <cmath>

namespace umbrixlib::toolkit {

namespace {

double to_light(double code)
{
    return code <= 0.04045 ? code / 12.92 : std::pow((code + 0.055) / 1.055, 2.4);
}

double to_code(double light)
{
    double const inside = light > 0.0 ? std::min(light, 1.0) : 0.0;
    return inside <= 0.0031308 ? inside * 12.92 : 1.055 * std::pow(inside, 1.0 / 2.4) - 0.055;
}

template <typename Function>
void change_samples(Picture& floats, Function const& function)
{
    constexpr std::size_t kPiece = 65536;
    auto const samples = floats.samples<float>();
    std::size_t const pieces = (samples.size() + kPiece - 1) / kPiece;
    on_all_threads(pieces, [&](auto const& next) {
        for (std::size_t piece = next(); piece < pieces; piece = next()) {
            auto const part =
                samples.subspan(piece * kPiece, std::min(kPiece, samples.size() - piece * kPiece));
            std::ranges::transform(part, part.begin(), [&](float each) {
                return static_cast<float>(function(static_cast<double>(each)));
            });
        }
    });
}

} // namespace

Picture linear_colours(Picture const& picture)
{
    Picture colours = in_floats(in_colour(picture, false));
    if (is_whole(picture.type)) {
        change_samples(colours, to_light);
    }
    return colours;
}

void code_as_srgb(Picture& floats)
{
    change_samples(floats, to_code);
}

} // namespace umbrixlib::toolkit
