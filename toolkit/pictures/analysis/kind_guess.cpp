// SPDX-License-Identifier: MIT
#include "toolkit/pictures/analysis/kind_guess.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

constexpr int kGreySpread = 6;         // JPEG leaves a little colour in a grey picture
constexpr double kLengthSpread = 0.12; // resizing shortens normals
constexpr double kMostTexels = 0.9;
constexpr double kManyTexels = 0.5;
constexpr std::size_t kLookedAt = 1U << 20U;

struct Look {
    double grey_share;        ///< Of the texels, 0 to 1.
    double unit_vector_share; ///< Of the texels, 0 to 1.
    double mean[3];           ///< 0 to 255.
};

/// Red, green and blue in 8 bits.
using Colour = std::array<std::uint8_t, 3>;

bool is_grey(Colour const& texel)
{
    auto const [least, most] = std::minmax({texel[0], texel[1], texel[2]});
    return most - least <= kGreySpread;
}

/// A vector of unit length that points out of the surface.
bool is_unit_vector(Colour const& texel)
{
    auto const component = [&](std::size_t channel) { return texel[channel] / 127.5 - 1.0; };
    double const length = std::hypot(component(0), component(1), component(2));
    return std::abs(length - 1.0) <= kLengthSpread && component(2) > 0.0;
}

Look look_at(Picture const& picture)
{
    std::size_t const step = picture.texels() / kLookedAt + 1;
    double const looked_at = static_cast<double>((picture.texels() - 1) / step + 1);
    Look look{};
    with_samples(picture, [&](auto samples) {
        auto const channels = static_cast<std::size_t>(picture.channels);
        for (std::size_t i = 0; i < picture.texels(); i += step) {
            auto const* const at = &samples[i * channels];
            Colour const texel{to_byte(at[0]), to_byte(at[1]), to_byte(at[2])};
            look.grey_share += is_grey(texel) ? 1.0 / looked_at : 0.0;
            look.unit_vector_share += is_unit_vector(texel) ? 1.0 / looked_at : 0.0;
            for (std::size_t c = 0; c < 3; ++c) {
                look.mean[c] += texel[c] / looked_at;
            }
        }
    });
    return look;
}

/// On average a surface points straight up: (127, 127, 255). A blue sky is made of unit vectors, too.
bool looks_like_normals(Look const& look)
{
    constexpr double kOff = 30.0;
    constexpr double kLeastBlue = 180.0;
    return look.unit_vector_share >= kManyTexels && std::abs(look.mean[0] - 127.5) <= kOff &&
           std::abs(look.mean[1] - 127.5) <= kOff && look.mean[2] >= kLeastBlue;
}

} // namespace

KindGuess guess_kind(Picture const& picture, std::filesystem::path const& file)
{
    Look const look = look_at(has_vectors(picture) ? encoded_vectors(picture) : picture);
    if (look.grey_share >= kMostTexels) {
        return {Kind::kHeightMap, "it has no colour"};
    }
    if (looks_like_normals(look)) {
        return {Kind::kNormalMap, "its colours are normals"};
    }
    if (auto const hint = hint_of_name(file)) {
        return {hint->kind, fmt::format("its name says '{}'", hint->word)};
    }
    return {Kind::kHeightMap, "its colours are no normals"};
}

} // namespace umbrixlib::toolkit
