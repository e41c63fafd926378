// SPDX-License-Identifier: MIT
#include "foundation/retained_buffer_internal.h"

#include <gtest/gtest.h>

namespace {

using umbrixlib::detail::Buffer;
using umbrixlib::detail::RetainedBuffer;

TEST(RetainedBuffer, HandsOutTheKeptBufferAgainZeroed)
{
    RetainedBuffer<int> retained;
    Buffer<int> first = retained.take(10);
    int const* const address = first.data.get();
    first.data[3] = 7;
    retained.keep(std::move(first));
    Buffer<int> const second = retained.take(5);
    EXPECT_EQ(second.data.get(), address);
    EXPECT_EQ(second.data[3], 0);
    EXPECT_EQ(second.capacity, 10U);
}

TEST(RetainedBuffer, HandsItOutAsItWasLeftToWhoOverwritesIt)
{
    RetainedBuffer<int> retained;
    Buffer<int> first = retained.take(10);
    int const* const address = first.data.get();
    first.data[3] = 7;
    retained.keep(std::move(first));
    Buffer<int> const second = retained.take_to_overwrite(5);
    EXPECT_EQ(second.data.get(), address);
    EXPECT_EQ(second.data[3], 7);
}

TEST(RetainedBuffer, GrowsWhenMoreIsAskedFor)
{
    RetainedBuffer<int> retained;
    retained.keep(retained.take(2));
    Buffer<int> const larger = retained.take(100);
    EXPECT_GE(larger.capacity, 100U);
    EXPECT_EQ(larger.data[99], 0);
}

TEST(RetainedBuffer, DoesNotShareABufferThatIsInUse)
{
    RetainedBuffer<int> retained;
    Buffer<int> const first = retained.take(4);
    Buffer<int> const second = retained.take(4);
    EXPECT_NE(first.data.get(), second.data.get());
}

TEST(RetainedBuffer, GivesABlockForNoElements)
{
    RetainedBuffer<int> retained;
    EXPECT_NE(retained.take(0).data, nullptr);
}

} // namespace
