// SPDX-License-Identifier: MIT
#pragma once

#include "common/vector_types.h"
#include "float_bits.h"

#include <gtest/gtest.h>
#include <vector>

namespace umbrixlib::test {

/// Success if @p count floats have the same bits, else the first few that differ.
inline testing::AssertionResult same_bits(float const* expected, float const* actual, std::size_t count)
{
    constexpr int kShown = 5;
    testing::AssertionResult failure = testing::AssertionFailure();
    int differing = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (bits_of(expected[i]) != bits_of(actual[i]) && ++differing <= kShown) {
            failure << "\n  float " << i << ": expected " << expected[i] << " (0x" << std::hex
                    << bits_of(expected[i]) << "), got " << actual[i] << " (0x" << bits_of(actual[i])
                    << std::dec << ")";
        }
    }
    if (differing == 0) {
        return testing::AssertionSuccess();
    }
    return failure << "\n  " << differing << " of " << count << " floats differ";
}

/// The same for whole images of float, float3 or float4.
template <typename Pixel>
testing::AssertionResult same_bits(std::vector<Pixel> const& expected, std::vector<Pixel> const& actual)
{
    if (expected.size() != actual.size()) {
        return testing::AssertionFailure() << "sizes " << expected.size() << " and " << actual.size();
    }
    return same_bits(reinterpret_cast<float const*>(expected.data()),
                     reinterpret_cast<float const*>(actual.data()),
                     expected.size() * (sizeof(Pixel) / sizeof(float)));
}

} // namespace umbrixlib::test

#define EXPECT_SAME_BITS(expected, actual) EXPECT_TRUE(umbrixlib::test::same_bits(expected, actual))
