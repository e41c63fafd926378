// SPDX-License-Identifier: MIT

/// What goes into a slot and comes out of it. No device is needed: slots are the session's own.

#include "random_image.h"
#include "report_log.h"
#include "same_bits.h"
#include "session/session.h"
#include "umbrix/grading.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

using coralith::Session;
using coralith::test::ReportLog;
using umbrixlib::test::random_image;

class CoralithSlots : public testing::Test {
protected:
    static constexpr int kRows = 3;
    static constexpr int kCols = 5;

    std::vector<float> got(coralith::Slot& slot, int rows, int cols)
    {
        std::vector<float> buffer(static_cast<std::size_t>(rows * cols * slot.components()), -7.0f);
        session_.get(slot, buffer.data(), rows, cols);
        return buffer;
    }
    bool is_empty(coralith::Slot& slot, int rows = kRows, int cols = kCols)
    {
        return got(slot, rows, cols)[0] == -7.0f;
    }

    ReportLog log_;
    Session session_{coralith::Discovery{}};
    std::vector<float> first_ = random_image<float>(kRows * kCols * 4, 1);
    std::vector<float> second_ = random_image<float>(kRows * kCols * 4, 2);
};

TEST_F(CoralithSlots, GiveBackWhatWentIn)
{
    session_.set(session_.destination_1, first_.data(), kRows, kCols);
    session_.set(session_.destination_3, second_.data(), kRows, kCols);
    session_.set(session_.destination_4, first_.data(), kRows, kCols);
    EXPECT_EQ(got(session_.destination_1, kRows, kCols),
              std::vector<float>(first_.begin(), first_.begin() + 15));
    EXPECT_EQ(got(session_.destination_3, kRows, kCols),
              std::vector<float>(second_.begin(), second_.begin() + 45));
    EXPECT_EQ(got(session_.destination_4, kRows, kCols), first_);
}

TEST_F(CoralithSlots, KeepNoPointerToTheBuffer)
{
    std::vector<float> buffer(first_.begin(), first_.begin() + 15);
    session_.set(session_.destination_1, buffer.data(), kRows, kCols);
    buffer.assign(15, 0.0f);
    EXPECT_EQ(got(session_.destination_1, kRows, kCols)[4], first_[4]);
}

TEST_F(CoralithSlots, AreOverwrittenByTheNextBufferOfAnySize)
{
    session_.set(session_.destination_1, first_.data(), kRows, kCols);
    session_.set(session_.destination_1, second_.data(), kRows, kCols);
    EXPECT_EQ(got(session_.destination_1, kRows, kCols)[14], second_[14]);
    session_.set(session_.destination_1, first_.data(), 7, 8);
    EXPECT_EQ(got(session_.destination_1, 7, 8)[55], first_[55]);
    session_.set(session_.destination_1, second_.data(), 2, 1);
    EXPECT_EQ(got(session_.destination_1, 2, 1), std::vector<float>(second_.begin(), second_.begin() + 2));
    EXPECT_TRUE(is_empty(session_.destination_1, 7, 8)) << "the size before is gone";
}

TEST_F(CoralithSlots, OfAnotherSizeLeaveTheBufferAloneAndSaySo)
{
    session_.set(session_.destination_3, first_.data(), kRows, kCols);
    EXPECT_TRUE(is_empty(session_.destination_3, kCols, kRows));
    ASSERT_EQ(log_.lines().size(), 1U);
    EXPECT_NE(log_.lines()[0].find("5 x 3"), std::string::npos) << log_.lines()[0];
    EXPECT_STREQ(session_.runner().reports().last(), log_.lines()[0].c_str());
}

TEST_F(CoralithSlots, MayBeDeletedTwiceAndBeforeAnythingWentIn)
{
    session_.delete_destinations();
    session_.delete_sources();
    session_.set(session_.destination_1, first_.data(), kRows, kCols);
    session_.set(session_.destination_4, first_.data(), kRows, kCols);
    session_.set(session_.source_1, first_.data(), kRows, kCols);
    session_.delete_destinations();
    session_.delete_destinations();
    EXPECT_TRUE(is_empty(session_.destination_1));
    EXPECT_TRUE(is_empty(session_.destination_4));
    EXPECT_FALSE(is_empty(session_.source_1)) << "the sides are apart";
    session_.delete_sources();
    session_.delete_sources();
    EXPECT_TRUE(is_empty(session_.source_1));
    session_.set(session_.destination_1, first_.data(), kRows, kCols);
    EXPECT_FALSE(is_empty(session_.destination_1)) << "and taken again";
}

TEST_F(CoralithSlots, IgnoreNullAndSidesBelowOne)
{
    session_.set(session_.destination_1, first_.data(), kRows, kCols);
    session_.set(session_.destination_1, nullptr, kRows, kCols);
    session_.set(session_.destination_1, second_.data(), 0, kCols);
    session_.set(session_.destination_1, second_.data(), kRows, -1);
    session_.get(session_.destination_1, nullptr, kRows, kCols);
    EXPECT_EQ(got(session_.destination_1, kRows, kCols)[0], first_[0]);
}

TEST_F(CoralithSlots, StagesWorkInPlaceOnTheSlotRatherThanTheArgument)
{
    umbrix_options options{};
    options.contrast = options.h_contrast = 0.5f;
    options.max = options.h_max = 255;
    session_.set(session_.destination_1, first_.data(), kRows, kCols);
    session_.set(session_.destination_4, first_.data(), kRows, kCols);
    ASSERT_TRUE(session_.pre_process(second_.data(), kRows, kCols, options));
    ASSERT_TRUE(session_.pre_process(second_.data(), kRows, kCols, options));
    ASSERT_TRUE(session_.post_process(nullptr, kRows, kCols, options));
    std::vector<float> heights(first_.begin(), first_.begin() + 15);
    PreProcess(heights.data(), kRows, kCols, options);
    PreProcess(heights.data(), kRows, kCols, options);
    std::vector<float> map = first_;
    PostProcess(reinterpret_cast<float4*>(map.data()), kRows, kCols, options);
    EXPECT_SAME_BITS(heights, got(session_.destination_1, kRows, kCols));
    EXPECT_SAME_BITS(map, got(session_.destination_4, kRows, kCols));
}

TEST_F(CoralithSlots, AMissingSlotIsMadeFromTheArgument)
{
    umbrix_options options{};
    options.brightness = options.h_brightness = 0.25f;
    options.max = options.h_max = 255;
    session_.set(session_.destination_4, second_.data(), 1, 2); // of another size
    ASSERT_TRUE(session_.pre_process(first_.data(), kRows, kCols, options));
    ASSERT_TRUE(session_.post_process(first_.data(), kRows, kCols, options));
    ASSERT_TRUE(session_.height_to_normal(first_.data(), kRows, kCols, 1.0f, 0.0f, 0.0f));
    EXPECT_FALSE(is_empty(session_.destination_1));
    EXPECT_FALSE(is_empty(session_.destination_3));
    EXPECT_FALSE(is_empty(session_.destination_4));
}

TEST_F(CoralithSlots, WithNeitherSlotNorArgumentThereIsNoResult)
{
    umbrix_options options{};
    EXPECT_FALSE(session_.pre_process(nullptr, kRows, kCols, options));
    EXPECT_FALSE(session_.post_process(nullptr, kRows, kCols, options));
    EXPECT_FALSE(session_.height_to_normal(nullptr, kRows, kCols, 1.0f, 0.0f, 0.0f));
    EXPECT_FALSE(session_.umbrix_normal(nullptr, 0, kRows, kCols));
    EXPECT_FALSE(session_.directional_occlusion(nullptr, kRows, kCols, {}, coralith::PortionRule::of(true, 0),
                                                nullptr));
    EXPECT_EQ(log_.lines().size(), 5U);
    EXPECT_TRUE(is_empty(session_.destination_3));
}

TEST_F(CoralithSlots, SidesBelowOneDoNothing)
{
    umbrix_options options{};
    int progress = 5;
    EXPECT_FALSE(session_.pre_process(first_.data(), 0, 3, options));
    EXPECT_FALSE(session_.post_process(first_.data(), 3, 0, options));
    EXPECT_FALSE(session_.height_to_normal(first_.data(), -3, -3, 1.0f, 0.0f, 0.0f));
    EXPECT_FALSE(session_.umbrix_normal(first_.data(), 0, 0, 0));
    EXPECT_FALSE(session_.directional_occlusion(first_.data(), 0, 4, {}, coralith::PortionRule::of(true, 0),
                                                &progress));
    EXPECT_TRUE(log_.lines().empty());
    EXPECT_EQ(progress, 5);
}

TEST_F(CoralithSlots, OcclusionTakesTheSourceBeforeTheArgument)
{
    coralith::OcclusionSettings const settings = {4, 90.0f, 90.0f, 1.0f, true, true};
    auto const rule = coralith::PortionRule::of(true, 0);
    ASSERT_TRUE(session_.directional_occlusion(first_.data(), kRows, kCols, settings, rule, nullptr));
    auto const from_argument = got(session_.destination_3, kRows, kCols);
    session_.delete_destinations();
    session_.set(session_.source_1, first_.data(), kRows, kCols);
    ASSERT_TRUE(session_.directional_occlusion(second_.data(), kRows, kCols, settings, rule, nullptr));
    EXPECT_SAME_BITS(from_argument, got(session_.destination_3, kRows, kCols));
    session_.delete_sources();
    ASSERT_TRUE(session_.directional_occlusion(second_.data(), kRows, kCols, settings, rule, nullptr));
    EXPECT_FALSE(umbrixlib::test::same_bits(from_argument, got(session_.destination_3, kRows, kCols)));
}

TEST_F(CoralithSlots, ANullArgumentStandsForTheSlotThatHasTheInput)
{
    session_.set(session_.destination_1, first_.data(), kRows, kCols);
    ASSERT_TRUE(session_.height_to_normal(nullptr, kRows, kCols, 2.0f, 0.0f, 0.0f));
    ASSERT_TRUE(session_.umbrix_normal(nullptr, 0, kRows, kCols));
    auto const chained = got(session_.destination_3, kRows, kCols);
    ASSERT_TRUE(session_.height_to_normal(first_.data(), kRows, kCols, 2.0f, 0.0f, 0.0f));
    auto const normals = got(session_.destination_3, kRows, kCols);
    ASSERT_TRUE(session_.umbrix_normal(normals.data(), 0, kRows, kCols));
    EXPECT_SAME_BITS(chained, got(session_.destination_3, kRows, kCols));
}

} // namespace
