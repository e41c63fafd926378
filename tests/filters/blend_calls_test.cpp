// SPDX-License-Identifier: MIT
// The blends that are handed to a kernel.
#include "filters/blend.h"

#include "call_log.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using umbrixlib::test::CallLog;

class BlendCalls : public testing::Test {
protected:
    void SetUp() override
    {
        CallLog::instance().clear();
        CallLog::instance().buffer(first_);
        CallLog::instance().buffer(second_);
    }

    float3 first_[6] = {};
    float3 second_[6] = {};
};

TEST_F(BlendCalls, ColoursHandTheOpacityOnAsItIs)
{
    blend(first_, second_, 150.0f, 2, 3);
    blend(first_, second_, -5.0f, 2, 3, 0, 1);
    overlay(first_, second_, 150.0f, 2, 3);
    EXPECT_THAT(CallLog::instance().calls(),
                ElementsAre("Blend(0, 150, #1, #2, #1, 2, 3)", "Blend(0, -5, #1, #2, #1, 2, 3)",
                            "Blend(1, 150, #1, #2, #1, 2, 3)"));
}

TEST_F(BlendCalls, EverySizeIsHandedOnAsItIs)
{
    blend(first_, second_, 50.0f, 1, 6);
    blend(first_, second_, 50.0f, 6, 1, 0, 1);
    overlay(first_, second_, 50.0f, 1, 1);
    overlay(first_, second_, 50.0f, 0, 6);
    EXPECT_THAT(CallLog::instance().calls(),
                ElementsAre("Blend(0, 50, #1, #2, #1, 1, 6)", "Blend(0, 50, #1, #2, #1, 6, 1)",
                            "Blend(1, 50, #1, #2, #1, 1, 1)", "Blend(1, 50, #1, #2, #1, 0, 6)"));
}

TEST_F(BlendCalls, OnlyTheLongOverlayIsSliced)
{
    overlay(first_, second_, 50.0f, 2, 3, 1, 4);
    EXPECT_THAT(CallLog::instance().calls(), ElementsAre("Blend(1, 50, #1, #2, #1, 2, 3, 1, 4)"));
}

} // namespace
