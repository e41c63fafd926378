// SPDX-License-Identifier: MIT

/// A device that fails: the caller gets the same picture, the reason once, and the device is not asked again.

#include "faulty_backend.h"
#include "random_image.h"
#include "report_log.h"
#include "same_bits.h"
#include "session/session.h"
#include "test_devices.h"

#include <gtest/gtest.h>
#include <omp.h>
#include <string>
#include <utility>
#include <vector>

namespace {

using coralith::Discovery;
using coralith::Failure;
using coralith::Kernel;
using coralith::PortionRule;
using coralith::Session;
using coralith::Stage;
using coralith::test::faulty_device;
using coralith::test::Plan;
using coralith::test::ReportLog;
using umbrixlib::test::random_image;
using umbrixlib::test::Values;

constexpr int kRows = 13;
constexpr int kCols = 18;
constexpr std::size_t kTexels = std::size_t{kRows} * kCols;

umbrix_options full_options()
{
    umbrix_options options{};
    options.contrast = options.h_contrast = 0.3f;
    options.brightness = options.h_brightness = 0.1f;
    options.min = options.h_min = 10;
    options.max = options.h_max = 240;
    options.smooth = options.h_smooth = 1.1f;
    return options;
}

/// What a run leaves in the caller's hands.
struct Pictures {
    std::vector<float> heights = random_image<float>(kTexels, 1, Values::kUnit);
    std::vector<float3> normals{kTexels};
    std::vector<float3> light{kTexels};
    std::vector<float3> occlusion{kTexels};
    std::vector<float4> map = random_image<float4>(kTexels, 2, Values::kUnit);
    std::vector<int> progress;
};

/// The five groups of calls in their order.
Pictures run_all(Session& session)
{
    Pictures pictures;
    umbrix_options options = full_options();
    session.set(session.destination_1, pictures.heights.data(), kRows, kCols);
    EXPECT_TRUE(session.pre_process(pictures.heights.data(), kRows, kCols, options));
    session.get(session.destination_1, pictures.heights.data(), kRows, kCols);

    session.set(session.destination_3, &pictures.normals[0].x, kRows, kCols);
    EXPECT_TRUE(session.height_to_normal(pictures.heights.data(), kRows, kCols, 2.0f, 0.8f, 2.0f));
    session.get(session.destination_3, &pictures.normals[0].x, kRows, kCols);

    session.set(session.destination_3, &pictures.normals[0].x, kRows, kCols);
    EXPECT_TRUE(session.umbrix_normal(&pictures.normals[0].x, 2, kRows, kCols));
    session.get(session.destination_3, &pictures.light[0].x, kRows, kCols);
    session.delete_destinations();
    session.delete_sources();

    int progress = -1;
    session.set(session.destination_3, &pictures.occlusion[0].x, kRows, kCols);
    session.set(session.source_3, &pictures.occlusion[0].x, kRows, kCols);
    session.set(session.source_1, pictures.heights.data(), kRows, kCols);
    session.set(session.destination_1, pictures.heights.data(), kRows, kCols);
    EXPECT_TRUE(session.directional_occlusion(pictures.heights.data(), kRows, kCols,
                                              {5, 90.0f, 90.0f, 0.7f, true, false}, PortionRule{50.0, 2},
                                              &progress));
    EXPECT_EQ(progress, 1000);
    session.get(session.destination_3, &pictures.occlusion[0].x, kRows, kCols);
    session.delete_destinations();
    session.delete_sources();

    session.set(session.destination_4, &pictures.map[0].x, kRows, kCols);
    EXPECT_TRUE(session.post_process(&pictures.map[0].x, kRows, kCols, options));
    session.get(session.destination_4, &pictures.map[0].x, kRows, kCols);
    session.delete_destinations();
    session.delete_sources();
    return pictures;
}

void expect_same(Pictures const& expected, Pictures const& got, std::string const& what)
{
    EXPECT_SAME_BITS(expected.heights, got.heights) << what;
    EXPECT_SAME_BITS(expected.normals, got.normals) << what;
    EXPECT_SAME_BITS(expected.light, got.light) << what;
    EXPECT_SAME_BITS(expected.occlusion, got.occlusion) << what;
    EXPECT_SAME_BITS(expected.map, got.map) << what;
}

coralith::Device host_as_device()
{
    coralith::Device device;
    device.name = "Host as a device";
    device.backend = "OpenCL";
    device.open = [](std::string&) { return std::make_unique<coralith::HostBackend>(); };
    return device;
}

Session faulty_session(Plan& plan)
{
    Discovery found;
    found.devices.push_back(faulty_device(plan, host_as_device()));
    return Session(std::move(found));
}

/// The maps are small and the runs many: a team of threads would only wait for itself.
class CoralithFailure : public testing::Test {
protected:
    CoralithFailure() { omp_set_num_threads(1); }
    ~CoralithFailure() override { omp_set_num_threads(omp_get_num_procs()); }
};

Pictures of_the_host()
{
    ReportLog const log;
    Session session{Discovery{}};
    return run_all(session);
}

TEST_F(CoralithFailure, ARunUsesEveryKernelOfTheDevice)
{
    Pictures const expected = of_the_host();
    ReportLog const log;
    Plan plan;
    Session session = faulty_session(plan);
    expect_same(expected, run_all(session), "no fault");
    EXPECT_EQ(plan.launched.size(), static_cast<std::size_t>(coralith::kKernels));
    EXPECT_EQ(plan.opened, 1);
    EXPECT_STREQ(session.runner().active_backend(), "OpenCL");
    EXPECT_TRUE(log.lines().empty()) << "nothing to say";
}

TEST_F(CoralithFailure, AFaultAtAnyOperationChangesNoPicture)
{
    Pictures const expected = of_the_host();
    Plan counting;
    Session counted = faulty_session(counting);
    run_all(counted);
    ASSERT_GT(counting.operations, 150);
    for (bool const stays_away : {false, true}) {
        for (int at = 0; at < counting.operations; ++at) {
            ReportLog const log;
            Plan plan;
            plan.fail_at = at;
            plan.stays_away = stays_away;
            Session session = faulty_session(plan);
            std::string const what = "operation " + std::to_string(at) + (stays_away ? " and all later" : "");
            expect_same(expected, run_all(session), what);
            EXPECT_EQ(plan.operations, at + 1) << what << ": the device is retired";
            EXPECT_STREQ(session.runner().active_backend(), "host") << what;
            ASSERT_EQ(log.lines().size(), 1U) << what;
            EXPECT_NE(log.lines()[0].find("Faulty card"), std::string::npos) << log.lines()[0];
            EXPECT_NE(log.lines()[0].find("planned: "), std::string::npos) << log.lines()[0];
            EXPECT_STREQ(session.runner().reports().last(), log.lines()[0].c_str());
        }
    }
}

TEST_F(CoralithFailure, WithoutRoomOnlyTheStageMovesToTheHost)
{
    Pictures const expected = of_the_host();
    Plan counting;
    Session counted = faulty_session(counting);
    run_all(counted);
    for (int at = 0; at < counting.operations; ++at) {
        ReportLog const log;
        Plan plan;
        plan.fail_at = at;
        plan.failure = Failure::kMemory;
        Session session = faulty_session(plan);
        expect_same(expected, run_all(session), "operation " + std::to_string(at));
        EXPECT_STREQ(session.runner().active_backend(), "OpenCL") << at;
        run_all(session);
        EXPECT_EQ(plan.launched.size(), static_cast<std::size_t>(coralith::kKernels)) << at;
        EXPECT_EQ(log.lines().size(), 1U) << at;
    }
}

TEST_F(CoralithFailure, ABufferAboveTheLimitsLeavesTheDeviceInUse)
{
    Pictures const expected = of_the_host();
    ReportLog const log;
    Plan plan;
    plan.limits.largest_buffer = kTexels * sizeof(float4) - 1;
    Session session = faulty_session(plan);
    expect_same(expected, run_all(session), "small device");
    EXPECT_STREQ(session.runner().active_backend(), "OpenCL");
    EXPECT_TRUE(plan.launched.count(Kernel::kCountOpenRays)) << "the stage before the one with the large map";
    EXPECT_EQ(log.lines().size(), 1U);
}

TEST_F(CoralithFailure, TheSameReasonIsReportedOnce)
{
    ReportLog const log;
    Plan plan;
    plan.limits.exact_double = false;
    Session session = faulty_session(plan);
    run_all(session);
    auto const lines = log.lines().size();
    EXPECT_EQ(lines, 4U) << "one for each stage that computes in double";
    run_all(session);
    EXPECT_EQ(log.lines().size(), lines);
}

TEST_F(CoralithFailure, ADeviceWithoutDoublesStillTracesRays)
{
    Pictures const expected = of_the_host();
    ReportLog const log;
    Plan plan;
    plan.limits.exact_double = false;
    Session session = faulty_session(plan);
    expect_same(expected, run_all(session), "no doubles");
    EXPECT_EQ(plan.launched, (std::set<Kernel>{Kernel::kCountOpenRays, Kernel::kCountsToShares}));
}

TEST_F(CoralithFailure, ADeviceThatRoundsOtherwiseIsNotUsed)
{
    Pictures const expected = of_the_host();
    ReportLog const log;
    Plan plan;
    plan.limits.exact_float = plan.limits.exact_double = false;
    Session session = faulty_session(plan);
    expect_same(expected, run_all(session), "inexact");
    EXPECT_EQ(plan.operations, 0);
}

TEST_F(CoralithFailure, ADeviceWhoseResultsDifferIsRetiredByItsSelfTest)
{
    Pictures const expected = of_the_host();
    ReportLog const log;
    Plan plan;
    plan.spoils_results = true;
    Session session = faulty_session(plan);
    expect_same(expected, run_all(session), "wrong numbers");
    EXPECT_STREQ(session.runner().active_backend(), "host");
    EXPECT_NE(std::string(session.runner().reports().last()).find("differ"), std::string::npos);
}

TEST_F(CoralithFailure, ADeviceThatCannotBeOpenedIsRetired)
{
    Pictures const expected = of_the_host();
    ReportLog const log;
    Discovery found;
    found.devices.push_back(host_as_device());
    int tries = 0;
    found.devices[0].open = [&tries](std::string& why) -> std::unique_ptr<coralith::Backend> {
        ++tries;
        why = "it is asleep";
        return nullptr;
    };
    Session session(std::move(found));
    EXPECT_STREQ(session.runner().active_backend(), "OpenCL");
    expect_same(expected, run_all(session), "cannot be opened");
    EXPECT_EQ(tries, 1);
    EXPECT_STREQ(session.runner().active_backend(), "host");
    EXPECT_NE(std::string(session.runner().reports().last()).find("it is asleep"), std::string::npos);
}

TEST_F(CoralithFailure, ProgressHoldsUntilTheHostHasCaughtUp)
{
    /// Fails at the tenth launch of the rays, and notes what the caller saw at every launch.
    struct Watch {
        int progress = -1;
        std::vector<int> seen;
    };
    class Watched final : public coralith::Backend {
    public:
        explicit Watched(Watch& watch) : watch_(watch) {}
        char const* kind() const override { return "OpenCL"; }
        coralith::Limits limits() const override { return inner_.limits(); }
        bool allocate(std::size_t bytes, coralith::Memory& memory) override
        {
            return inner_.allocate(bytes, memory);
        }
        void release(coralith::Memory& memory) override { inner_.release(memory); }
        bool upload(coralith::Memory const& memory, void const* from, std::size_t bytes) override
        {
            return inner_.upload(memory, from, bytes);
        }
        bool download(coralith::Memory const& memory, void* to, std::size_t bytes) override
        {
            return inner_.download(memory, to, bytes);
        }
        bool launch(Kernel kernel, coralith::Index items, coralith::Arguments arguments) override
        {
            watch_.seen.push_back(watch_.progress);
            return watch_.seen.size() > 10 ? fail(Failure::kDevice, "planned")
                                           : inner_.launch(kernel, items, arguments);
        }
        bool finish() override { return true; }

    private:
        Watch& watch_;
        coralith::HostBackend inner_;
    };
    Watch watch;
    coralith::Progress progress(&watch.progress);
    auto const heights = random_image<float>(kTexels, 1);
    std::vector<float> result(kTexels * 3);
    auto const run = [&](coralith::Backend& backend) {
        return directional_occlusion(backend, {kRows, kCols}, {8, 90.0f, 90.0f, 0.7f, true, true},
                                     PortionRule{50.0, 1}, heights.data(), result.data(), progress);
    };
    Watched failing(watch);
    ASSERT_FALSE(run(failing));
    int const reached = watch.progress;
    EXPECT_GT(reached, 300);
    watch.seen.clear();
    Watched starting_again(watch);
    ASSERT_FALSE(run(starting_again));
    for (int const seen : watch.seen) {
        EXPECT_EQ(seen, reached) << "it holds";
    }
    coralith::HostBackend host;
    ASSERT_TRUE(run(host));
    EXPECT_EQ(watch.progress, 1000);
}

TEST_F(CoralithFailure, RealDevicesPulledAwayInTheMiddleOfARunLeaveItCorrect)
{
    Pictures const expected = of_the_host();
    for (coralith::Device const& real : coralith::test::real_devices().devices) {
        Plan counting;
        {
            Discovery found;
            found.devices.push_back(faulty_device(counting, real));
            Session session(std::move(found));
            expect_same(expected, run_all(session), real.name);
            EXPECT_STREQ(session.runner().active_backend(), "OpenCL") << session.runner().reports().last();
        }
        for (int const share : {2, 5, 8}) {
            ReportLog const log;
            Plan plan;
            plan.fail_at = counting.operations * share / 10;
            plan.stays_away = true;
            Discovery found;
            found.devices.push_back(faulty_device(plan, real));
            Session session(std::move(found));
            expect_same(expected, run_all(session), real.name + ", " + std::to_string(share) + "/10");
            EXPECT_STREQ(session.runner().active_backend(), "host");
            EXPECT_EQ(log.lines().size(), 1U);
        }
    }
}

} // namespace
