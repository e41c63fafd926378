// SPDX-License-Identifier: MIT
#include "toolkit/pictures/analysis/picture_difference.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace umbrixlib::toolkit {

std::vector<int> largest_difference(Picture const& a, Picture const& b)
{
    auto const channels = static_cast<std::size_t>(a.channels);
    std::vector<int> largest(channels);
    double const scale = 255.0 / full_scale(a.type);
    with_samples(a, [&]<typename Sample>(std::span<Sample const> of_a) {
        auto const of_b = b.samples<Sample>();
        for (std::size_t i = 0; i < of_a.size(); ++i) {
            double const apart = std::abs(to_number(of_a[i]) - to_number(of_b[i])) * scale;
            int& known = largest[i % channels];
            known = apart > known ? static_cast<int>(std::min(std::ceil(apart), 255.0)) : known;
        }
    });
    return largest;
}

std::string in_words(std::vector<int> const& differences)
{
    constexpr char const* kNames[] = {"red", "green", "blue", "alpha"};
    std::string words;
    for (std::size_t channel = 0; channel < differences.size(); ++channel) {
        words += fmt::format("{}{} {}", channel == 0 ? "" : ", ", kNames[channel], differences[channel]);
    }
    return words;
}

} // namespace umbrixlib::toolkit
