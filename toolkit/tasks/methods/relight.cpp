// SPDX-License-Identifier: MIT
#include "toolkit/tasks/methods/relight.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace umbrixlib::toolkit {

namespace {

using Vector = std::array<double, 3>;

constexpr double kRadians = 3.14159265358979323846 / 180.0;

// The basis vectors of an Umbrix map in the order of its channels. The first is longer than 1.
Vector const kBasis[] = {
    {std::sqrt(3.0 / 2.0), 0.0, std::sqrt(1.0 / 3.0)},
    {-std::sqrt(1.0 / 6.0), -std::sqrt(1.0 / 2.0), std::sqrt(1.0 / 3.0)},
    {-std::sqrt(1.0 / 6.0), std::sqrt(1.0 / 2.0), std::sqrt(1.0 / 3.0)},
};

/// What flat ground has in a channel whose basis vector has this length.
double flat_value(Modes mode, double length)
{
    double const projection = std::sqrt(1.0 / 3.0);
    switch (mode) {
    case Modes_UnitBasis:
        return projection / length;
    case Modes_FlatIsFull:
        return 1.0;
    case Modes_Squared:
        return projection / length * (projection / length);
    default:
        return projection;
    }
}

Vector direction_of(Light light)
{
    double const azimuth = light.azimuth_degrees * kRadians;
    double const elevation = light.elevation_degrees * kRadians;
    return {std::cos(azimuth) * std::cos(elevation), std::sin(azimuth) * std::cos(elevation),
            std::sin(elevation)};
}

/// Writes means of squares of @p factor by @p factor texels of @p source, whole ones rounded to the nearest,
/// into @p result. Both have samples of this type.
template <typename Sample>
void reduce(Picture const& source, int factor, Picture& result)
{
    constexpr bool kIsWhole = std::is_integral_v<Sample>;
    using Sum = std::conditional_t<kIsWhole, std::size_t, double>;
    auto const step = static_cast<std::size_t>(factor);
    auto const row = static_cast<std::size_t>(source.width);
    auto const channels = static_cast<std::size_t>(source.channels);
    auto const from = source.samples<Sample>();
    auto const to = result.samples<Sample>();
    for (std::size_t i = 0; i < result.texels(); ++i) {
        std::size_t const x = i % static_cast<std::size_t>(result.width) * step;
        std::size_t const y = i / static_cast<std::size_t>(result.width) * step;
        for (std::size_t c = 0; c < channels; ++c) {
            Sum sum = kIsWhole ? static_cast<Sum>(step * step / 2) : Sum{0};
            for (std::size_t dy = 0; dy < step; ++dy) {
                for (std::size_t dx = 0; dx < step; ++dx) {
                    sum += static_cast<Sum>(from[((y + dy) * row + x + dx) * channels + c]);
                }
            }
            to[i * channels + c] = static_cast<Sample>(sum / static_cast<Sum>(step * step));
        }
    }
}

/// @p source reduced to means of squares of @p factor by @p factor texels.
Picture reduced(Picture const& source, int factor)
{
    Picture const floats = source.type == SampleType::kHalf ? in_floats(source) : Picture{};
    Picture const& from = floats.bytes.empty() ? source : floats;
    Picture result = make_picture(from.width / factor, from.height / factor, from.channels, from.type);
    with_samples(from, [&]<typename Sample>(std::span<Sample const>) {
        if constexpr (!std::is_same_v<Sample, Half>) {
            reduce<Sample>(from, factor, result);
        }
    });
    return result;
}

/// Calls @p body with the number of each texel and its light, in which @p one stands for 1.
template <typename Body>
void for_each_lit(Picture const& map, std::array<double, 3> const& weights, double one, Body&& body)
{
    double const scale = one / full_scale(map.type);
    with_samples(map, [&](auto samples) {
        auto const channels = static_cast<std::size_t>(map.channels);
        for (std::size_t i = 0; i < map.texels(); ++i) {
            auto const* const from = &samples[i * channels];
            double const lit = weights[0] * to_number(from[0]) + weights[1] * to_number(from[1]) +
                               weights[2] * to_number(from[2]);
            body(i, lit * scale);
        }
    });
}

/// Copies @p piece into @p sheet with its bottom left corner there.
void place(Picture const& piece, Picture& sheet, int left, int bottom)
{
    std::size_t const texel = sample_size(piece.type) * static_cast<std::size_t>(piece.channels);
    for (int y = 0; y < piece.height; ++y) {
        auto const from = static_cast<std::size_t>(y) * static_cast<std::size_t>(piece.width);
        auto const to = static_cast<std::size_t>(bottom + y) * static_cast<std::size_t>(sheet.width) +
                        static_cast<std::size_t>(left);
        std::copy_n(&piece.bytes[from * texel], static_cast<std::size_t>(piece.width) * texel,
                    &sheet.bytes[to * texel]);
    }
}

/// About as many columns as rows; one more where that leaves no cell of the sheet empty.
int columns_of(int directions)
{
    int const square = static_cast<int>(std::ceil(std::sqrt(directions)));
    for (int columns = square; columns <= square + 1; ++columns) {
        if (directions % columns == 0) {
            return columns;
        }
    }
    return square;
}

} // namespace

std::array<double, 3> channel_weights(Light light, Relighting const& look)
{
    Vector const towards = direction_of(light);
    std::array<double, 3> weights{};
    double flat = 0.0;
    for (std::size_t c = 0; c < 3; ++c) {
        Vector const& basis = kBasis[c];
        double const length = std::hypot(basis[0], basis[1], basis[2]);
        double const dot = towards[0] * basis[0] + towards[1] * basis[1] + towards[2] * basis[2];
        weights[c] = std::max(dot / length, 0.0);
        flat += weights[c] * flat_value(look.mode, length);
    }
    for (double& weight : weights) {
        weight *= look.exposure / flat;
    }
    return weights;
}

Picture relit(Picture const& map, Light light, Relighting const& look, SavedAs const& as)
{
    std::array<double, 3> const weights = channel_weights(light, look);
    if (as.depth == SampleType::kUint8 && !as.dither) {
        Picture result = make_picture(map.width, map.height, 3);
        for_each_lit(map, weights, 255.0, [&](std::size_t i, double grey) {
            // Not a number gives 0, too.
            std::fill_n(result.texel(i), 3,
                        static_cast<std::uint8_t>(grey > 0.0 ? std::min(grey + 0.5, 255.0) : 0.0));
        });
        return result;
    }
    Picture greys = make_picture(map.width, map.height, 1, SampleType::kFloat);
    greys.kind = PictureKind::kLight;
    auto const to = greys.samples<float>();
    for_each_lit(map, weights, 1.0, [&](std::size_t i, double grey) { to[i] = static_cast<float>(grey); });
    Picture result = in_samples(greys, as);
    return as.depth == SampleType::kUint8 ? in_colour(result, false) : result;
}

Picture turntable(Picture const& map, Light light, Relighting const& look, int directions, int cell,
                  SavedAs const& as)
{
    int const longest = std::max(map.width, map.height);
    int const factor = std::min((longest + cell - 1) / cell, std::min(map.width, map.height));
    Picture const small = reduced(map, factor);
    int const columns = columns_of(directions);
    int const rows = (directions + columns - 1) / columns;
    int const channels = as.depth == SampleType::kUint8 ? 3 : 1;
    Picture sheet = make_picture(columns * small.width, rows * small.height, channels, as.depth);
    for (int i = 0; i < directions; ++i) {
        Light const turned{light.azimuth_degrees + 360.0 * i / directions, light.elevation_degrees};
        place(relit(small, turned, look, as), sheet, i % columns * small.width,
              (rows - 1 - i / columns) * small.height);
    }
    return sheet;
}

} // namespace umbrixlib::toolkit
