// SPDX-License-Identifier: MIT
#include "foundation/run_control.h"

#include "common/stop_request.h"
#include "foundation/run_report_internal.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>

namespace {

using umbrixlib::RunControl;
using umbrixlib::detail::is_stop_requested;
using umbrixlib::detail::RunReport;
using umbrixlib::detail::store_progress;

TEST(RunControl, BeginsWithoutAStage)
{
    RunControl const control;
    EXPECT_STREQ(control.stage(), "");
    EXPECT_EQ(control.permille(), 0);
    EXPECT_FALSE(control.stopping());
}

TEST(RunControl, AStageBeginsAtNothing)
{
    RunControl control;
    store_progress(*control.kernel_progress(), 700);
    EXPECT_EQ(control.permille(), 700);
    control.enter("next");
    EXPECT_STREQ(control.stage(), "next");
    EXPECT_EQ(control.permille(), 0);
}

TEST(RunControl, NothingOverwritesAStop)
{
    RunControl control;
    control.stop();
    EXPECT_TRUE(control.stopping());
    control.enter("next");
    store_progress(*control.kernel_progress(), 5);
    EXPECT_TRUE(is_stop_requested(*control.kernel_progress()));
    EXPECT_EQ(control.permille(), 0) << "a stop is no progress";
}

TEST(RunControl, WhatAKernelWritesBeyondItsRangeIsLimited)
{
    RunControl control;
    *control.kernel_progress() = 5000;
    EXPECT_EQ(control.permille(), 1000);
    *control.kernel_progress() = -3;
    EXPECT_EQ(control.permille(), 0);
}

TEST(RunControl, MayBeStoppedWhileProgressIsWritten)
{
    for (int round = 0; round < 200; ++round) {
        RunControl control;
        std::thread writer([&] {
            for (int i = 0; i < 1000; ++i) {
                store_progress(*control.kernel_progress(), i);
            }
        });
        control.stop();
        writer.join();
        ASSERT_TRUE(is_stop_requested(*control.kernel_progress()));
    }
}

TEST(RunReport, GoesToThePolledTextAndNumber)
{
    std::string status;
    int progress = 9;
    RunReport report(&status, &progress);
    report.show("one");
    EXPECT_EQ(status, "one");
    EXPECT_EQ(progress, 9);
    report.begin("two");
    EXPECT_EQ(status, "two");
    EXPECT_EQ(progress, 0);
    EXPECT_EQ(report.kernel_progress(), &progress);
    EXPECT_FALSE(report.can_stop());
    EXPECT_FALSE(report.stopping());
}

TEST(RunReport, GoesToAControlOrNowhere)
{
    RunControl control;
    RunReport report(&control);
    report.begin("one");
    EXPECT_STREQ(control.stage(), "one");
    EXPECT_TRUE(report.can_stop());
    control.stop();
    EXPECT_TRUE(report.stopping());
    RunReport nowhere(nullptr);
    nowhere.begin("one");
    EXPECT_EQ(nowhere.kernel_progress(), nullptr);
    EXPECT_FALSE(nowhere.can_stop());
}

} // namespace
