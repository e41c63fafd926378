// SPDX-License-Identifier: MIT

/// Numbers and names of devices, and the order in which they are found.

#include "boundary/gpu_library.h"
#include "device/shared_library.h"
#include "opencl/api.h"
#include "report_log.h"
#include "session/discovery.h"
#include "session/session.h"
#include "test_devices.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace {

using coralith::Device;
using coralith::Discovery;
using coralith::PciAddress;
using coralith::Session;
using coralith::test::ReportLog;

Device named(std::string name, bool is_card, std::optional<PciAddress> address = {})
{
    Device device;
    device.name = std::move(name);
    device.backend = "OpenCL";
    device.is_graphics_card = is_card;
    device.address = address;
    device.open = [](std::string& why) -> std::unique_ptr<coralith::Backend> {
        why = "only a name";
        return nullptr;
    };
    return device;
}

std::vector<std::string> names(std::vector<Device> const& devices)
{
    std::vector<std::string> found;
    for (Device const& device : devices) {
        found.push_back(device.name);
    }
    return found;
}

TEST(CoralithDevices, CardsComeBeforeOthersAndATwinTakesItsPlace)
{
    auto const order = coralith::merged(
        {named("processor", false), named("card 1", true, PciAddress{0, 1, 0}), named("card 2", true),
         named("card 3", true, PciAddress{0, 3, 0}), named("accelerator", false)},
        {named("cuda 4", true, PciAddress{0, 4, 0}), named("cuda 3", true, PciAddress{0, 3, 0})});
    EXPECT_EQ(names(order),
              (std::vector<std::string>{"card 1", "card 2", "cuda 3", "cuda 4", "processor", "accelerator"}));
}

TEST(CoralithDevices, TheHostIsTheLastAndStandsForEveryUnknownNumber)
{
    ReportLog const log;
    Discovery found;
    found.devices = {named("card", true), named("processor", false)};
    Session session(std::move(found));
    coralith::StageRunner& runner = session.runner();
    EXPECT_EQ(runner.device_count(), 3);
    EXPECT_STREQ(runner.device_name(0), "card");
    EXPECT_STREQ(runner.device_name(2), "Processor");
    EXPECT_EQ(runner.device_name(3), nullptr);
    EXPECT_EQ(runner.device_name(-1), nullptr);
    EXPECT_STREQ(runner.active_backend(), "OpenCL") << "device 0 without a selection";
    auto const runs = [&](int device) {
        runner.select(device);
        return runner.run(coralith::Stage::kPreProcess,
                          [](coralith::Backend& backend) { return backend.kind() == std::string("host"); });
    };
    for (int const device : {2, -1, 3, 1000, -1000}) {
        EXPECT_TRUE(runs(device)) << device;
        EXPECT_STREQ(runner.active_backend(), "host") << device;
    }
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"there is no device 3, the host runs every stage",
                                                     "there is no device 1000, the host runs every stage"}));
}

TEST(CoralithDevices, WithoutAnyTheHostRunsAndThatIsSaidOnce)
{
    ReportLog const log;
    Session session{Discovery{{}, {"no OpenCL: no driver"}}};
    EXPECT_EQ(session.runner().device_count(), 1);
    EXPECT_STREQ(session.runner().active_backend(), "host");
    EXPECT_STREQ(session.runner().reports().last(), "") << "not before a stage runs";
    for (int i = 0; i < 3; ++i) {
        float heights[4] = {0, 1, 2, 3};
        EXPECT_TRUE(session.height_to_normal(heights, 2, 2, 1.0f, 0.0f, 0.0f));
    }
    EXPECT_EQ(log.lines(),
              (std::vector<std::string>{"no device, the host runs every stage; no OpenCL: no driver"}));
}

TEST(CoralithDevices, AMissingLoaderLeavesNoDeviceAndAReason)
{
    Discovery const found = coralith::discover_opencl("libNoSuchOpenCL.so.9");
    EXPECT_TRUE(found.devices.empty());
    ASSERT_EQ(found.notes.size(), 1U);
    EXPECT_NE(found.notes[0].find("libNoSuchOpenCL.so.9"), std::string::npos) << found.notes[0];
}

TEST(CoralithDevices, ALibraryThatIsNoLoaderLeavesNoDeviceAndAReason)
{
    Discovery const found = coralith::discover_opencl("libm.so.6");
    EXPECT_TRUE(found.devices.empty());
    ASSERT_EQ(found.notes.size(), 1U);
    EXPECT_NE(found.notes[0].find("lacks clGetPlatformIDs"), std::string::npos) << found.notes[0];
}

TEST(CoralithDevices, AFileThatIsNoModuleLeavesNoDeviceAndAReason)
{
    for (char const* const path : {"libm.so.6", "/nowhere/libcoralith_cuda.so"}) {
        Discovery const found = coralith::discover_cuda(path);
        EXPECT_TRUE(found.devices.empty());
        ASSERT_EQ(found.notes.size(), 1U);
        EXPECT_EQ(found.notes[0].rfind("no CUDA: ", 0), 0U) << found.notes[0];
    }
}

TEST(CoralithDevices, TheSettingChoosesAmongTheInterfaces)
{
    auto const with = [](char const* wish) {
        setenv("CORALITH_BACKEND", wish, 1);
        Discovery found = coralith::discover_devices();
        unsetenv("CORALITH_BACKEND");
        return found;
    };
    EXPECT_TRUE(with("host").devices.empty());
    EXPECT_FALSE(with("opencl").devices.empty());
    EXPECT_FALSE(with("auto").devices.empty());
    EXPECT_FALSE(with("").devices.empty());
    Discovery const unknown = with("best");
    EXPECT_FALSE(unknown.devices.empty());
    ASSERT_FALSE(unknown.notes.empty());
    EXPECT_NE(unknown.notes.back().find("'best'"), std::string::npos);
    for (Device const& device : with("opencl").devices) {
        EXPECT_EQ(device.backend, "OpenCL");
    }
    for (Device const& device : with("cuda").devices) {
        EXPECT_EQ(device.backend, "CUDA");
    }
}

#if defined(CORALITH_CUDA_MODULE)
TEST(CoralithDevices, TheCudaModuleLoadsAndHasDevicesOrSaysWhyNot)
{
    ASSERT_TRUE(coralith::SharedLibrary(CORALITH_CUDA_MODULE).is_open())
        << coralith::SharedLibrary(CORALITH_CUDA_MODULE).fault();
    Discovery const found = coralith::discover_cuda(CORALITH_CUDA_MODULE);
    if (found.devices.empty()) {
        ASSERT_EQ(found.notes.size(), 1U);
        EXPECT_EQ(found.notes[0].rfind("no CUDA: ", 0), 0U) << found.notes[0];
        EXPECT_EQ(found.notes[0].find("another build"), std::string::npos) << found.notes[0];
    }
    for (Device const& device : found.devices) {
        EXPECT_TRUE(device.is_graphics_card);
        EXPECT_TRUE(device.address.has_value());
    }
}
#endif

TEST(CoralithDevices, ErrorsAreNamedWithTheirNumber)
{
    EXPECT_EQ(coralith::opencl_error("clFinish", -5), "clFinish: -5 (out of resources)");
    EXPECT_EQ(coralith::opencl_error("clGetPlatformIDs", -1001),
              "clGetPlatformIDs: -1001 (no driver is installed)");
    EXPECT_EQ(coralith::opencl_error("clFinish", -77), "clFinish: -77 (error)");
}

TEST(CoralithPortions, GrowAndShrinkTowardsTheTarget)
{
    coralith::Portions portions(50.0, 1024);
    EXPECT_EQ(portions.units(), 65536);
    portions.took(65536, 1.0);
    EXPECT_EQ(portions.units(), 131072) << "at most doubled";
    portions.took(131072, 100.0);
    EXPECT_EQ(portions.units(), 65536);
    portions.took(65536, 1e9);
    EXPECT_EQ(portions.units(), 16384) << "at least quartered";
    portions.took(100, 1e9);
    EXPECT_EQ(portions.units(), 64) << "never below the least";
    portions.took(1000, 0.0);
    EXPECT_EQ(portions.units(), 2000) << "no time is not no limit";
    EXPECT_EQ(coralith::Portions(50.0, coralith::Index{1} << 40).units(), 64);
}

TEST(CoralithPortions, FollowTheTwoSettings)
{
    using coralith::PortionRule;
    EXPECT_EQ(PortionRule::of(false, 0).target_milliseconds, 50.0);
    EXPECT_EQ(PortionRule::of(false, 0).rays, 0);
    EXPECT_EQ(PortionRule::of(false, 8).rays, 8);
    EXPECT_EQ(PortionRule::of(false, -8).rays, 0);
    EXPECT_EQ(PortionRule::of(true, 8).rays, 0) << "only for a responsive desktop";
    EXPECT_EQ(PortionRule::of(true, 8).target_milliseconds, 1000.0);
}

} // namespace
