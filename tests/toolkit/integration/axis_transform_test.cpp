// SPDX-License-Identifier: MIT
/// The waves along an axis, against sums straight from their definition.
#include "toolkit/integration/axis_transform.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <random>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

constexpr std::size_t kSequences = 2 * kLanes;
constexpr double kPi = std::numbers::pi;

/// Powers, all radices with a butterfly and without, products of them, and primes that need a chirp.
constexpr std::size_t kLengths[] = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 12, 13, 15, 16,  20,
                                    25, 27, 30, 31, 32, 34, 37, 60, 62, 64, 74, 77, 97, 101, 121};

/// 2 * kLanes sequences of random numbers.
class Sequences {
public:
    explicit Sequences(std::size_t length) : numbers_(kSequences * length)
    {
        std::mt19937 random(3);
        std::uniform_real_distribution<float> spread(-1.0f, 1.0f);
        std::ranges::generate(numbers_, [&] { return spread(random); });
    }

    ComplexLanes lanes() { return {numbers_.data(), numbers_.data() + numbers_.size() / 2}; }

    double number(std::size_t sequence, std::size_t at) const
    {
        std::size_t const part = sequence < kLanes ? 0 : numbers_.size() / 2;
        return static_cast<double>(numbers_[part + at * kLanes + sequence % kLanes]);
    }

private:
    std::vector<float> numbers_;
};

/// Number @p at of wave @p wave, as forward() weights it.
double wave_at(std::size_t wave, std::size_t at, std::size_t length, bool repeats)
{
    auto const angle = [&](double turns) { return 2.0 * kPi * turns / static_cast<double>(length); };
    auto const number = static_cast<double>(wave);
    auto const place = static_cast<double>(at);
    if (!repeats) {
        return std::cos(angle(0.5 * number * (place + 0.5)));
    }
    return 2 * wave <= length ? std::cos(angle(number * place))
                              : -std::sin(angle((static_cast<double>(length) - number) * place));
}

double largest_error_of_waves(std::size_t length, bool repeats)
{
    AxisTransform const axis(length, repeats);
    std::vector<float> scratch(axis.scratch());
    Sequences const source(length);
    Sequences made = source;
    axis.forward(made.lanes(), scratch.data());
    double largest = 0.0;
    for (std::size_t sequence = 0; sequence < kSequences; ++sequence) {
        for (std::size_t wave = 0; wave < length; ++wave) {
            double sum = 0.0;
            for (std::size_t at = 0; at < length; ++at) {
                sum += source.number(sequence, at) * wave_at(wave, at, length, repeats);
            }
            largest = std::max(largest, std::abs(sum - made.number(sequence, wave)));
        }
    }
    return largest;
}

double largest_error_there_and_back(std::size_t length, bool repeats)
{
    AxisTransform const axis(length, repeats);
    std::vector<float> scratch(axis.scratch());
    Sequences const source(length);
    Sequences made = source;
    axis.forward(made.lanes(), scratch.data());
    axis.backward(made.lanes(), scratch.data());
    double largest = 0.0;
    for (std::size_t sequence = 0; sequence < kSequences; ++sequence) {
        for (std::size_t at = 0; at < length; ++at) {
            largest = std::max(largest, std::abs(made.number(sequence, at) / static_cast<double>(length) -
                                                 source.number(sequence, at)));
        }
    }
    return largest;
}

TEST(AxisTransform, TakesSequencesApartIntoWaves)
{
    for (std::size_t const length : kLengths) {
        EXPECT_LT(largest_error_of_waves(length, true), 1e-5) << length;
        EXPECT_LT(largest_error_of_waves(length, false), 1e-5) << length;
    }
}

TEST(AxisTransform, JoinsTheWavesAgain)
{
    for (std::size_t const length : kLengths) {
        EXPECT_LT(largest_error_there_and_back(length, true), 3e-6) << length;
        EXPECT_LT(largest_error_there_and_back(length, false), 3e-6) << length;
    }
    EXPECT_LT(largest_error_there_and_back(2039, true), 5e-6);
    EXPECT_LT(largest_error_there_and_back(2039, false), 5e-6);
}

TEST(AxisTransform, HasTheFactorsOfTheCentralDifference)
{
    AxisTransform const repeating(8, true);
    double const repeating_factors[] = {0.0, 2.0, 4.0, 2.0, 0.0, 2.0, 4.0, 2.0};
    AxisTransform const mirrored(4, false);
    double const mirrored_factors[] = {0.0, 2.0, 4.0, 2.0};
    for (std::size_t i = 0; i < 8; ++i) {
        EXPECT_NEAR(repeating.factor(i), repeating_factors[i], 1e-12) << i;
    }
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_NEAR(mirrored.factor(i), mirrored_factors[i], 1e-12) << i;
    }
    EXPECT_EQ(repeating.factor(4), 0.0); // a stripe a texel wide, not a rounded sine
    EXPECT_GT(AxisTransform(7, true).factor(3), 0.1);
}

} // namespace
} // namespace umbrixlib::test
