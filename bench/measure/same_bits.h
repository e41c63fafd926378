// SPDX-License-Identifier: MIT
#pragma once

#include <cstring>
#include <vector>

namespace umbrixlib::bench {

template <typename Pixel>
bool same_bits(std::vector<Pixel> const& a, std::vector<Pixel> const& b)
{
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(Pixel)) == 0;
}

} // namespace umbrixlib::bench
