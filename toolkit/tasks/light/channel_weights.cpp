// SPDX-License-Identifier: MIT
#include "toolkit/tasks/light/channel_weights.h"

#include <algorithm>
#include <cmath>

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

double dot(Vector const& a, Vector const& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Vector cross(Vector const& a, Vector const& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Vector scaled(Vector const& vector, double by)
{
    return {vector[0] * by, vector[1] * by, vector[2] * by};
}

Vector unit(Vector const& vector)
{
    return scaled(vector, 1.0 / std::sqrt(dot(vector, vector)));
}

/// What a channel has on ground of a normal (x, y, 1) with small x and y: the first two numbers times x and
/// y, and the third.
Vector response(Vector const& basis, Modes mode)
{
    Vector const direction = unit(basis);
    switch (mode) {
    case Modes_UnitBasis:
        return direction;
    case Modes_FlatIsFull:
        return scaled(direction, 1.0 / direction[2]);
    case Modes_Squared:
        return {2.0 * direction[2] * direction[0], 2.0 * direction[2] * direction[1],
                direction[2] * direction[2]};
    default:
        return basis;
    }
}

std::array<Vector, 3> responses(Modes mode)
{
    return {response(kBasis[0], mode), response(kBasis[1], mode), response(kBasis[2], mode)};
}

Vector direction_of(Light light)
{
    double const azimuth = light.azimuth_degrees * kRadians;
    double const elevation = light.elevation_degrees * kRadians;
    return {std::cos(azimuth) * std::cos(elevation), std::sin(azimuth) * std::cos(elevation),
            std::sin(elevation)};
}

/// The light that kExact follows: its part along the plane and upwards.
Vector followed(Light light, WeightRule rule)
{
    constexpr double kLowest = 6.0;
    light.elevation_degrees = std::max(light.elevation_degrees, kLowest);
    Vector const towards = direction_of(light);
    double const along = rule == WeightRule::kFitted ? 1.25 * std::pow(towards[2], 0.3) : 1.0;
    return {towards[0] * along, towards[1] * along, towards[2]};
}

/// The weights whose sum of @p parts is @p whole, by Cramer's rule.
ChannelWeights solved(std::array<Vector, 3> const& parts, Vector const& whole)
{
    Vector const opposite[] = {cross(parts[1], parts[2]), cross(parts[2], parts[0]),
                               cross(parts[0], parts[1])};
    double const volume = dot(parts[0], opposite[0]);
    return {dot(whole, opposite[0]) / volume, dot(whole, opposite[1]) / volume,
            dot(whole, opposite[2]) / volume};
}

ChannelWeights clamped(Vector const& towards)
{
    ChannelWeights weights{};
    std::ranges::transform(kBasis, weights.begin(),
                           [&](Vector const& basis) { return std::max(dot(towards, unit(basis)), 0.0); });
    return weights;
}

} // namespace

ChannelWeights channel_weights(Light light, Relighting const& look)
{
    std::array<Vector, 3> const parts = responses(look.mode);
    ChannelWeights const weights = look.weights == WeightRule::kClamped
                                       ? clamped(direction_of(light))
                                       : solved(parts, followed(light, look.weights));
    return scaled(weights, look.exposure / dot(weights, {parts[0][2], parts[1][2], parts[2][2]}));
}

double ambient_weight(Relighting const& look)
{
    std::array<Vector, 3> const parts = responses(look.mode);
    return look.ambient / (parts[0][2] + parts[1][2] + parts[2][2]);
}

} // namespace umbrixlib::toolkit
