// SPDX-License-Identifier: MIT
#include "umbrix/texel_steps_internal.h"

#include <gtest/gtest.h>

namespace {

using umbrixlib::detail::from_byte;
using umbrixlib::detail::mean_of_bytes;

float quotient(unsigned char byte)
{
    return static_cast<float>(byte / 255.0);
}

TEST(TexelSteps, EveryByteIsTheRoundedQuotient)
{
    for (int byte = 0; byte < 256; ++byte) {
        EXPECT_EQ(from_byte(static_cast<unsigned char>(byte)), quotient(static_cast<unsigned char>(byte)));
    }
}

TEST(TexelSteps, TheMeanOfAnyThreeBytesIsTheRoundedQuotient)
{
    double of_byte[256];
    for (int byte = 0; byte < 256; ++byte) {
        of_byte[byte] = quotient(static_cast<unsigned char>(byte));
    }
    int different = 0;
    for (int bytes = 0; bytes < 1 << 24; ++bytes) {
        int const a = bytes & 255;
        int const b = bytes >> 8 & 255;
        int const c = bytes >> 16;
        auto const expected = static_cast<float>((of_byte[a] + of_byte[b] + of_byte[c]) / 3.0);
        float const actual = mean_of_bytes(static_cast<unsigned char>(a), static_cast<unsigned char>(b),
                                           static_cast<unsigned char>(c));
        different += actual != expected ? 1 : 0;
    }
    EXPECT_EQ(different, 0);
}

} // namespace
