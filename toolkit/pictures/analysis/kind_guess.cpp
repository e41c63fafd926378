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

/// Some of the texels, spread over the whole picture.
class Look {
public:
    explicit Look(Picture const& picture)
        : picture_(picture), step_(picture.texels() / kLookedAt + 1),
          looked_at_(static_cast<double>((picture.texels() - 1) / step_ + 1))
    {
    }

    /// Of the texels, 0 to 1.
    template <typename Property>
    double share(Property property) const
    {
        double share = 0.0;
        visit([&](Colour const& texel) { share += property(texel) ? 1.0 / looked_at_ : 0.0; });
        return share;
    }

    /// 0 to 255.
    std::array<double, 3> mean() const
    {
        std::array<double, 3> mean{};
        visit([&](Colour const& texel) {
            for (std::size_t c = 0; c < 3; ++c) {
                mean[c] += texel[c] / looked_at_;
            }
        });
        return mean;
    }

private:
    template <typename Body>
    void visit(Body body) const
    {
        with_samples(picture_, [&](auto samples) {
            auto const channels = static_cast<std::size_t>(picture_.channels);
            for (std::size_t i = 0; i < picture_.texels(); i += step_) {
                auto const* const at = &samples[i * channels];
                body(Colour{to_byte(at[0]), to_byte(at[1]), to_byte(at[2])});
            }
        });
    }

    Picture const& picture_;
    std::size_t step_;
    double looked_at_;
};

/// On average a surface points straight up: (127, 127, 255). A blue sky is made of unit vectors, too.
bool looks_like_normals(Look const& look)
{
    constexpr double kOff = 30.0;
    constexpr double kLeastBlue = 180.0;
    auto const [red, green, blue] = look.mean();
    return std::abs(red - 127.5) <= kOff && std::abs(green - 127.5) <= kOff && blue >= kLeastBlue &&
           look.share(is_unit_vector) >= kManyTexels;
}

KindGuess guess_by_colours(Picture const& picture, std::filesystem::path const& file)
{
    Look const look(picture);
    if (look.share(is_grey) >= kMostTexels) {
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

} // namespace

KindGuess guess_kind(Picture const& picture, std::filesystem::path const& file)
{
    if (has_vectors(picture)) {
        return guess_by_colours(encoded_vectors(picture), file);
    }
    return guess_by_colours(picture, file);
}

} // namespace umbrixlib::toolkit
