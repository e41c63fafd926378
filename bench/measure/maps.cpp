// SPDX-License-Identifier: MIT
#include "maps.h"

#include "example_textures.h"
#include "rounds.h"

#include <cmath>
#include <cstddef>
#include <fstream>
#include <map>
#include <utility>

namespace umbrixlib::bench {

namespace {

std::vector<float> const& levels_of(std::string const& map, int side)
{
    static std::map<std::pair<std::string, int>, std::vector<float>> made;
    auto const [place, is_new] = made.try_emplace({map, side});
    if (is_new) {
        place->second = examples::heights(map, side);
        for (float& height : place->second) {
            height = std::round(height * 255.0f);
        }
    }
    return place->second;
}

} // namespace

std::vector<char const*> maps_of(int count, char** words, int quick_maps)
{
    return {kMaps.begin(), is_quick(count, words) ? kMaps.begin() + quick_maps : kMaps.end()};
}

std::vector<float> heights_of(std::string const& map, int side, float scale)
{
    std::vector<float> heights = levels_of(map, side);
    for (float& height : heights) {
        height = height / 255.0f * scale;
    }
    return heights;
}

template <typename Pixel>
std::vector<Pixel> pixels_of(std::string const& map, int side)
{
    constexpr std::size_t kChannels = sizeof(Pixel) / sizeof(float);
    std::vector<float> const heights = heights_of(map, side);
    std::vector<Pixel> pixels(heights.size());
    auto* const floats = reinterpret_cast<float*>(pixels.data());
    for (std::size_t i = 0; i < heights.size(); ++i) {
        for (std::size_t channel = 0; channel < kChannels; ++channel) {
            floats[i * kChannels + channel] = heights[(i + channel * heights.size() / 4) % heights.size()];
        }
    }
    return pixels;
}

template std::vector<float> pixels_of(std::string const&, int);
template std::vector<float3> pixels_of(std::string const&, int);
template std::vector<float4> pixels_of(std::string const&, int);

void write_picture(std::string const& file, std::string const& map, int map_side, int side)
{
    std::vector<float> const& levels = levels_of(map, map_side);
    auto const low = static_cast<char>(side & 255);
    auto const high = static_cast<char>(side >> 8);
    char const header[18] = {0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, low, high, low, high, 24, 0};
    std::ofstream out(file, std::ios::binary);
    out.write(header, sizeof header);
    std::vector<char> row(static_cast<std::size_t>(side) * 3);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            auto const texel = static_cast<std::size_t>(y % map_side) * static_cast<std::size_t>(map_side) +
                               static_cast<std::size_t>(x % map_side);
            auto const grey = static_cast<char>(static_cast<unsigned char>(levels[texel]));
            for (std::size_t channel = 0; channel < 3; ++channel) {
                row[static_cast<std::size_t>(x) * 3 + channel] = grey;
            }
        }
        out.write(row.data(), static_cast<std::streamsize>(row.size()));
    }
}

} // namespace umbrixlib::bench
