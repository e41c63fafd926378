// SPDX-License-Identifier: MIT
/// Light on an Umbrix map: the weights of its channels by each rule, light from all around, and albedo.
#include "toolkit/tasks/light/relight.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

using Three = std::array<double, 3>;

constexpr Modes kModes[] = {Modes_Projection, Modes_UnitBasis, Modes_FlatIsFull, Modes_Squared};
constexpr WeightRule kRules[] = {WeightRule::kFitted, WeightRule::kExact, WeightRule::kClamped};
constexpr Light kLights[] = {{0, 15}, {77, 30}, {135, 45}, {200, 60}, {290, 89}, {-60, 90}};

double product(Three const& a, Three const& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Three towards(Light light)
{
    double const azimuth = light.azimuth_degrees * std::numbers::pi / 180.0;
    double const elevation = light.elevation_degrees * std::numbers::pi / 180.0;
    return {std::cos(azimuth) * std::cos(elevation), std::sin(azimuth) * std::cos(elevation),
            std::sin(elevation)};
}

/// The channels of open ground that slopes by @p x and @p y.
Three channels_of(double x, double y, Modes mode)
{
    Three const bases[] = {{std::sqrt(1.5), 0.0, std::sqrt(1.0 / 3.0)},
                           {-std::sqrt(1.0 / 6.0), -std::sqrt(0.5), std::sqrt(1.0 / 3.0)},
                           {-std::sqrt(1.0 / 6.0), std::sqrt(0.5), std::sqrt(1.0 / 3.0)}};
    double const length = std::sqrt(x * x + y * y + 1.0);
    Three const normal{x / length, y / length, 1.0 / length};
    Three channels{};
    for (std::size_t c = 0; c < 3; ++c) {
        double const size = std::sqrt(product(bases[c], bases[c]));
        double const unit = product(normal, bases[c]) / size;
        channels[c] = mode == Modes_Projection  ? unit * size
                      : mode == Modes_UnitBasis ? unit
                      : mode == Modes_Squared   ? unit * unit
                                                : unit / (bases[c][2] / size);
    }
    return channels;
}

TEST(ChannelWeights, GiveFlatGroundTheExposure)
{
    for (Modes const mode : kModes) {
        for (WeightRule const rule : kRules) {
            for (Light const& light : kLights) {
                ChannelWeights const weights = channel_weights(light, {mode, 0.7, rule, 0.2});
                EXPECT_NEAR(product(weights, channels_of(0, 0, mode)), 0.7, 1e-12);
            }
        }
        double const ambient = ambient_weight({mode, 0.7, WeightRule::kFitted, 0.2});
        EXPECT_NEAR(product({ambient, ambient, ambient}, channels_of(0, 0, mode)), 0.2, 1e-12);
    }
}

TEST(ChannelWeights, GiveOpenSlopesTheLightOfLambertsLaw)
{
    for (Light const& light : kLights) {
        Three const to = towards(light);
        ChannelWeights const weights =
            channel_weights(light, {Modes_Projection, 1.0, WeightRule::kExact, 0.0});
        for (auto const& [x, y] : {std::pair(0.3, 0.1), {-0.2, 0.25}, {0.0, -0.4}}) {
            double const lambert = (x * to[0] + y * to[1] + to[2]) / std::sqrt(x * x + y * y + 1.0) / to[2];
            EXPECT_NEAR(product(weights, channels_of(x, y, Modes_Projection)), lambert, 1e-12);
        }
    }
}

TEST(ChannelWeights, DoSoOnLowSlopesInEveryMode)
{
    constexpr double kLow = 1e-5;
    for (Modes const mode : kModes) {
        for (Light const& light : kLights) {
            Three const to = towards(light);
            ChannelWeights const weights = channel_weights(light, {mode, 1.0, WeightRule::kExact, 0.0});
            auto const change = [&](double x, double y) {
                return (product(weights, channels_of(x, y, mode)) -
                        product(weights, channels_of(-x, -y, mode))) /
                       (2.0 * kLow);
            };
            EXPECT_NEAR(change(kLow, 0), to[0] / to[2], 1e-6);
            EXPECT_NEAR(change(0, kLow), to[1] / to[2], 1e-6);
        }
    }
}

TEST(ChannelWeights, FollowALightMoreAlongThePlaneWhereTheyAreFitted)
{
    for (Light const& light : kLights) {
        Three const to = towards(light);
        double const along = 1.25 * std::pow(to[2], 0.3);
        ChannelWeights const weights =
            channel_weights(light, {Modes_Projection, 1.0, WeightRule::kFitted, 0.0});
        double const lit = (0.3 * along * to[0] - 0.2 * along * to[1] + to[2]) / std::sqrt(1.13) / to[2];
        EXPECT_NEAR(product(weights, channels_of(0.3, -0.2, Modes_Projection)), lit, 1e-12);
    }
}

TEST(ChannelWeights, LeaveOutWhatFacesAwayWhereTheyAreClamped)
{
    ChannelWeights const right = channel_weights({0, 10}, {Modes_Projection, 1.0, WeightRule::kClamped, 0.0});
    EXPECT_NEAR(right[0], std::sqrt(3.0), 1e-12); // 1 / 0.577
    EXPECT_EQ(right[1], 0.0);
    EXPECT_EQ(right[2], 0.0);
    ChannelWeights const up = channel_weights({0, 90}, {Modes_Projection, 1.0, WeightRule::kClamped, 0.0});
    EXPECT_NEAR(up[0] / up[1], std::sqrt(1.0 / 3.0) / std::sqrt(1.5 + 1.0 / 3.0) * std::sqrt(3.0), 1e-12);
    EXPECT_NEAR(up[1], up[2], 1e-12);
}

TEST(ChannelWeights, TakeALightInThePlaneForALowOne)
{
    for (WeightRule const rule : {WeightRule::kFitted, WeightRule::kExact}) {
        Relighting const look{Modes_Projection, 1.0, rule, 0.0};
        EXPECT_EQ(channel_weights({30, 0}, look), channel_weights({30, 6}, look));
        EXPECT_NE(channel_weights({30, 6}, look), channel_weights({30, 7}, look));
    }
}

/// Two texels: flat ground, and a slope that the light of the tests does not reach.
Picture two_texels()
{
    Picture map = make_picture(2, 1, 3, SampleType::kFloat);
    auto const samples = map.samples<float>();
    for (std::size_t i = 0; i < 3; ++i) {
        samples[i] = std::sqrt(1.0f / 3.0f);
    }
    samples[3] = 0.0f;
    samples[4] = 0.6f;
    samples[5] = 0.6f;
    return map;
}

std::vector<float> floats_of(Picture const& picture)
{
    auto const samples = picture.samples<float>();
    return {samples.begin(), samples.end()};
}

constexpr SavedAs kFloats{SampleType::kFloat, Rounding::kCut, false};

TEST(Relit, HasNoLightBelowNone)
{
    std::vector<float> const lit =
        floats_of(relit({two_texels(), {}}, {0, 20}, {Modes_Projection, 0.7}, kFloats));
    ASSERT_EQ(lit.size(), 2U);
    EXPECT_NEAR(lit[0], 0.7f, 1e-6f);
    EXPECT_EQ(lit[1], 0.0f);
}

TEST(Relit, AddsLightFromAllAround)
{
    Relighting const look{Modes_Projection, 0.7, WeightRule::kFitted, 0.3};
    std::vector<float> const lit = floats_of(relit({two_texels(), {}}, {0, 20}, look, kFloats));
    EXPECT_NEAR(lit[0], 1.0f, 1e-6f);
    EXPECT_NEAR(lit[1], 0.3f * 1.2f / std::sqrt(3.0f), 1e-6f);
}

TEST(Relit, TakesNotANumberForNoLight)
{
    Picture map = two_texels();
    map.samples<float>()[0] = NAN;
    EXPECT_EQ(floats_of(relit({map, {}}, {0, 20}, {Modes_Projection, 0.7}, kFloats))[0], 0.0f);
    EXPECT_EQ(relit({map, {}}, {0, 20}, {Modes_Projection, 0.7}).bytes[0], 0);
}

TEST(Relit, ColoursTheLightWithAlbedo)
{
    LitSurface surface{two_texels(), make_picture(2, 1, 3, SampleType::kFloat)};
    auto const albedo = surface.albedo.samples<float>();
    albedo[0] = 0.5f;
    albedo[1] = 0.25f;
    albedo[2] = 1.0f;
    Relighting const look{Modes_Projection, 0.5, WeightRule::kFitted, 0.0};
    std::vector<float> const linear = floats_of(relit(surface, {0, 20}, look, kFloats));
    EXPECT_NEAR(linear[0], 0.25f, 1e-6f);
    EXPECT_NEAR(linear[1], 0.125f, 1e-6f);
    EXPECT_NEAR(linear[2], 0.5f, 1e-6f);
    // sRGB has 0.25, 0.125 and 0.5 at 136.96, 99.01 and 187.52.
    std::vector<std::uint8_t> const coded{137, 99, 188, 0, 0, 0};
    EXPECT_EQ(relit(surface, {0, 20}, look).bytes, coded);
}

TEST(Relit, GoesOnceRound)
{
    LitSurface const surface{two_texels(), {}};
    Relighting const look{Modes_Projection, 0.7};
    std::vector<Picture> const round = turned(surface, {10, 40}, look, 3, 16, kFloats);
    ASSERT_EQ(round.size(), 3U);
    EXPECT_EQ(round[0].bytes, relit(surface, {10, 40}, look, kFloats).bytes);
    EXPECT_EQ(round[2].bytes, relit(surface, {250, 40}, look, kFloats).bytes);
}

TEST(Relit, IsReducedToMeans)
{
    Picture map = make_picture(4, 2, 3);
    for (std::size_t i = 0; i < map.bytes.size(); ++i) {
        map.bytes[i] = static_cast<std::uint8_t>(10 * i);
    }
    std::vector<Picture> const round = turned({map, {}}, {10, 40}, {Modes_Projection, 0.7}, 1, 2, kFloats);
    ASSERT_EQ(round[0].width, 2);
    ASSERT_EQ(round[0].height, 1);
    Picture mean = make_picture(1, 1, 3, SampleType::kFloat);
    for (std::size_t c = 0; c < 3; ++c) {
        double const sum = map.bytes[c] + map.bytes[3 + c] + map.bytes[12 + c] + map.bytes[15 + c];
        mean.samples<float>()[c] = static_cast<float>(sum / 4.0 / 255.0);
    }
    EXPECT_NEAR(floats_of(round[0])[0],
                floats_of(relit({mean, {}}, {10, 40}, {Modes_Projection, 0.7}, kFloats))[0], 1e-6f);
}

} // namespace
} // namespace umbrixlib::test
