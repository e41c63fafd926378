// SPDX-License-Identifier: MIT
#include "toolkit/pictures/picture_difference.h"

#include <algorithm>
#include <cstdlib>
#include <fmt/format.h>

namespace umbrixlib::toolkit {

std::vector<int> largest_difference(Picture const& a, Picture const& b)
{
    auto const channels = static_cast<std::size_t>(a.channels);
    std::vector<int> largest(channels);
    for (std::size_t i = 0; i < a.bytes.size(); ++i) {
        int& known = largest[i % channels];
        known = std::max(known, std::abs(int{a.bytes[i]} - int{b.bytes[i]}));
    }
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
