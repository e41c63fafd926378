// SPDX-License-Identifier: MIT
#include "session/self_test.h"

#include "faulty_backend.h"
#include "test_devices.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace {

using coralith::HostBackend;
using coralith::SelfTest;
using coralith::Stage;

constexpr Stage kEvery[] = {Stage::kPreProcess, Stage::kPostProcess, Stage::kHeightToNormal,
                            Stage::kUmbrixNormal, Stage::kDirectionalOcclusion};

// CTest runs this one under an interpreter of kernels too, which reports what they do outside their buffers.
TEST(CoralithSelfTest, EveryDevicePassesEveryStage)
{
    HostBackend host;
    coralith::test::for_every_backend([&](coralith::Backend& backend, std::string const& name) {
        for (Stage const stage : kEvery) {
            EXPECT_EQ(self_test(backend, host, stage), SelfTest::kPassed)
                << name << ", " << name_of(stage) << ": " << backend.cause();
        }
    });
}

TEST(CoralithSelfTest, OneWrongBitOfAnyStageIsFound)
{
    HostBackend host;
    for (Stage const stage : kEvery) {
        coralith::test::Plan plan;
        plan.spoils_results = true;
        coralith::test::FaultyBackend spoiling(plan, std::make_unique<HostBackend>());
        EXPECT_EQ(self_test(spoiling, host, stage), SelfTest::kDiffers) << name_of(stage);
    }
}

TEST(CoralithSelfTest, AFailedOperationIsToldFromAWrongResult)
{
    HostBackend host;
    for (Stage const stage : kEvery) {
        coralith::test::Plan plan;
        plan.fail_at = 2;
        coralith::test::FaultyBackend failing(plan, std::make_unique<HostBackend>());
        EXPECT_EQ(self_test(failing, host, stage), SelfTest::kFailed) << name_of(stage);
        EXPECT_EQ(failing.cause().rfind("planned: ", 0), 0U);
    }
}

} // namespace
