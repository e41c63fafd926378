// SPDX-License-Identifier: MIT
#include "toolkit/textures/mipmaps.h"

#include "toolkit/base/all_threads.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace umbrixlib::toolkit {

namespace {

/// What texels in a line add to one of the next level.
struct Share {
    std::size_t first;
    std::size_t count;
    std::array<float, 3> weights;
};

Share share_of(int texel, int side)
{
    int const smaller = side / 2;
    auto const first = static_cast<std::size_t>(2 * texel);
    if (side == 1) {
        return {0, 1, {1.0f, 0.0f, 0.0f}};
    }
    if (side % 2 == 0) {
        return {first, 2, {0.5f, 0.5f, 0.0f}};
    }
    auto const of_side = [side](int part) { return static_cast<float>(part) / static_cast<float>(side); };
    return {first, 3, {of_side(smaller - texel), of_side(smaller), of_side(texel + 1)}};
}

int half_of(int side)
{
    return std::max(side / 2, 1);
}

/// @p to is the row that @p share of the rows of @p level makes.
void blend_rows(TextureLevel const& level, Share const& share, std::vector<float>& to)
{
    for (std::size_t i = 0; i < share.count; ++i) {
        float const* const from = &level.texels[(share.first + i) * level.row_size()];
        for (std::size_t k = 0; k < to.size(); ++k) {
            to[k] = (i == 0 ? 0.0f : to[k]) + share.weights[i] * from[k];
        }
    }
}

} // namespace

TextureLevel first_level(Picture const& picture)
{
    TextureLevel level{picture.width, picture.height, picture.channels, {}};
    std::size_t const size = level.row_size();
    level.texels.resize(size * static_cast<std::size_t>(picture.height));
    auto const channels = static_cast<std::size_t>(picture.channels);
    std::size_t const components = picture.kind == PictureKind::kNormals ? 3 : 0;
    double const full = full_scale(picture.type);
    with_samples(picture, [&](auto samples) {
        for_each_number(static_cast<std::size_t>(picture.height), [&](std::size_t y) {
            auto const from = samples.subspan(y * size, size);
            float* const to = &level.texels[(static_cast<std::size_t>(picture.height) - 1 - y) * size];
            for (std::size_t i = 0; i < size; ++i) {
                double const share = to_number(from[i]) / full;
                to[i] = static_cast<float>(i % channels < components ? 2.0 * share - 1.0 : share);
            }
        });
    });
    return level;
}

int all_levels(int width, int height)
{
    return static_cast<int>(std::bit_width(static_cast<unsigned>(std::max(width, height))));
}

TextureLevel smaller_level(TextureLevel const& level)
{
    TextureLevel smaller{half_of(level.width), half_of(level.height), level.channels, {}};
    smaller.texels.resize(smaller.row_size() * static_cast<std::size_t>(smaller.height));
    auto const channels = static_cast<std::size_t>(level.channels);
    for_each_number(static_cast<std::size_t>(smaller.height), [&](std::size_t y) {
        std::vector<float> row(level.row_size());
        blend_rows(level, share_of(static_cast<int>(y), level.height), row);
        float* to = &smaller.texels[y * smaller.row_size()];
        for (int x = 0; x < smaller.width; ++x) {
            Share const share = share_of(x, level.width);
            for (std::size_t c = 0; c < channels; ++c, ++to) {
                *to = 0.0f;
                for (std::size_t i = 0; i < share.count; ++i) {
                    *to += share.weights[i] * row[(share.first + i) * channels + c];
                }
            }
        }
    });
    return smaller;
}

TextureLevel with_unit_vectors(TextureLevel level)
{
    auto const channels = static_cast<std::size_t>(level.channels);
    for_each_number(static_cast<std::size_t>(level.height), [&](std::size_t y) {
        float* vector = &level.texels[y * level.row_size()];
        for (int x = 0; x < level.width; ++x, vector += channels) {
            auto const squares = static_cast<double>(vector[0]) * static_cast<double>(vector[0]) +
                                 static_cast<double>(vector[1]) * static_cast<double>(vector[1]) +
                                 static_cast<double>(vector[2]) * static_cast<double>(vector[2]);
            double const length = std::sqrt(squares);
            for (std::size_t c = 0; c < 3; ++c) {
                float const straight_up = c == 2 ? 1.0f : 0.0f;
                vector[c] =
                    length > 0.0 ? static_cast<float>(static_cast<double>(vector[c]) / length) : straight_up;
            }
        }
    });
    return level;
}

} // namespace umbrixlib::toolkit
