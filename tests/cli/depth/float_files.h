// SPDX-License-Identifier: MIT
#pragma once

#include "picture_files.h"

#include <cstring>
#include <fmt/format.h>
#include <vector>

namespace umbrixlib::test {

/// A PFM file of greys, the bottom row first.
inline Bytes pfm_bytes(int width, int height, std::vector<float> const& greys)
{
    std::string const head = fmt::format("Pf\n{} {}\n-1.0\n", width, height);
    Bytes file(head.begin(), head.end());
    file.resize(head.size() + greys.size() * sizeof(float));
    std::memcpy(&file[head.size()], greys.data(), greys.size() * sizeof(float));
    return file;
}

/// Heights of 8 x 8 texels, of which each is other than its neighbours: 0 to 63.
inline std::vector<float> all_heights()
{
    std::vector<float> heights;
    for (int i = 0; i < 64; ++i) {
        heights.push_back(static_cast<float>(i * 37 % 64));
    }
    return heights;
}

/// The same as k / 63, times @p scale, plus @p offset.
inline std::vector<float> scaled_heights(float scale, float offset)
{
    std::vector<float> heights = all_heights();
    for (float& height : heights) {
        height = height / 63.0f * scale + offset;
    }
    return heights;
}

} // namespace umbrixlib::test
