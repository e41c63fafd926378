// SPDX-License-Identifier: MIT

/// The exported calls in the groups that the pipelines make, on every device of the machine, against the
/// library for the processor; and from several threads and processes.

#include "boundary/gpu_library.h"
#include "boundary/texture_kernels.h"
#include "normals/height_to_normal.h"
#include "random_image.h"
#include "same_bits.h"
#include "umbrix/grading.h"

#include <climits>
#include <cstdlib>
#include <gtest/gtest.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

using umbrixlib::test::random_image;

bool const has_kernel_cache = setenv("POCL_CACHE_DIR", CORALITH_KERNEL_CACHE, 1) == 0;

constexpr int kRows = 21;
constexpr int kCols = 34;
constexpr std::size_t kTexels = std::size_t{kRows} * kCols;

struct Pictures {
    std::vector<float> heights = random_image<float>(kTexels, 1);
    std::vector<float3> normals = random_image<float3>(kTexels, 2);
    std::vector<float3> light = std::vector<float3>(kTexels);
    std::vector<float3> occlusion = random_image<float3>(kTexels, 3);
    std::vector<float4> map = random_image<float4>(kTexels, 4);
};

umbrix_options full_options()
{
    umbrix_options options{};
    options.contrast = options.h_contrast = 0.4f;
    options.min = options.h_min = 5;
    options.max = options.h_max = 251;
    options.brightness = options.h_brightness = -0.1f;
    options.smooth = options.h_smooth = 1.7f;
    return options;
}

Pictures of_the_processor()
{
    Pictures pictures;
    umbrix_options options = full_options();
    PreProcess(pictures.heights.data(), kRows, kCols, options);
    std::string status;
    int progress = 0;
    HeightToNormal(pictures.heights.data(), pictures.normals.data(), kRows, kCols, 3.0f, 0.6f, 0.0f, false, 0,
                   2.0f, false, 0.0f, 0.0f, false, &status, &progress);
    pictures.light = pictures.normals;
    Normal2Umbrix(pictures.light.data(), kRows, kCols, Modes_FlatIsFull, 0, 1);
    std::vector<ray> a(24);
    std::vector<ray> b(24);
    std::vector<ray> c(24);
    ray* rays[] = {a.data(), b.data(), c.data()};
    GenerateRays(kRows, kCols, rays[0], rays[1], rays[2], 12, 100.0f, 60.0f);
    Height2DirectionalAO(pictures.occlusion.data(), pictures.heights.data(), kRows, kCols, rays[0], rays[1],
                         rays[2], 12, 1.0f, 0.8f, true, true, false, nullptr);
    PostProcess(pictures.map.data(), kRows, kCols, options);
    return pictures;
}

/// The groups of calls, one after the other.
Pictures of_device(int device)
{
    Pictures pictures;
    umbrix_options options = full_options();
    GPU_opt const gpu = {true, device, 0};
    std::string status = "before";
    int progress = 17;
    SetDevice(device);
    SetDest(pictures.heights.data(), kRows, kCols);
    EXPECT_TRUE(PreProcess_GPU(gpu, pictures.heights.data(), kRows, kCols, options));
    GetDest(pictures.heights.data(), kRows, kCols);

    SetDevice(device);
    SetDest(pictures.normals.data(), kRows, kCols);
    EXPECT_TRUE(HeightToNormal_GPU(gpu, pictures.heights.data(), kRows, kCols, 3.0f, 0.6f, 2.0f, 0.0f,
                                   &status, &progress));
    GetDest(pictures.normals.data(), kRows, kCols);
    EXPECT_EQ(status, "Generating Normal");
    EXPECT_EQ(progress, 0);

    SetDevice(device);
    SetDest(pictures.normals.data(), kRows, kCols);
    UmbrixNormal_GPU(gpu, pictures.normals.data(), Modes_FlatIsFull, kRows, kCols);
    GetDest(pictures.light.data(), kRows, kCols);
    DeleteDest();
    DeleteSrc();

    SetDevice(device);
    SetDest(pictures.occlusion.data(), kRows, kCols);
    SetSrc(pictures.occlusion.data(), kRows, kCols);
    SetSrc(pictures.heights.data(), kRows, kCols);
    SetDest(pictures.heights.data(), kRows, kCols);
    DirectionalAO_GPU(pictures.heights.data(), kRows, kCols, 12, 60.0f, 100.0f, 0.8f, device, true, false,
                      !gpu.ao_flag, gpu.ao_value, &progress);
    GetDest(pictures.occlusion.data(), kRows, kCols);
    DeleteDest();
    DeleteSrc();
    EXPECT_EQ(progress, 1000);

    SetDest(pictures.map.data(), kRows, kCols);
    EXPECT_TRUE(PostProcess_GPU(gpu, pictures.map.data(), kRows, kCols, options));
    GetDest(pictures.map.data(), kRows, kCols);
    DeleteDest();
    DeleteSrc();
    return pictures;
}

void expect_same(Pictures const& expected, Pictures const& got, int device)
{
    EXPECT_SAME_BITS(expected.heights, got.heights) << DeviceName(device);
    EXPECT_SAME_BITS(expected.normals, got.normals) << DeviceName(device);
    EXPECT_SAME_BITS(expected.light, got.light) << DeviceName(device);
    EXPECT_SAME_BITS(expected.occlusion, got.occlusion) << DeviceName(device);
    EXPECT_SAME_BITS(expected.map, got.map) << DeviceName(device);
}

bool same(Pictures const& expected, Pictures const& got)
{
    return umbrixlib::test::same_bits(expected.heights, got.heights) &&
           umbrixlib::test::same_bits(expected.normals, got.normals) &&
           umbrixlib::test::same_bits(expected.light, got.light) &&
           umbrixlib::test::same_bits(expected.occlusion, got.occlusion) &&
           umbrixlib::test::same_bits(expected.map, got.map);
}

TEST(CoralithExports, EveryDeviceGivesTheProcessorsPictures)
{
    Pictures const expected = of_the_processor();
    ASSERT_GE(DeviceCount(), 2) << "no OpenCL device: install pocl-opencl-icd and ocl-icd-libopencl1";
    for (int device = 0; device < DeviceCount(); ++device) {
        ASSERT_NE(DeviceName(device), nullptr);
        expect_same(expected, of_device(device), device);
        bool const is_host = device + 1 == DeviceCount();
        EXPECT_EQ(ActiveBackend() == std::string("host"), is_host) << LastError();
    }
    EXPECT_STREQ(LastError(), "");
}

TEST(CoralithExports, GroupsInAnotherOrderDoNotDisturbEachOther)
{
    Pictures const expected = of_the_processor();
    umbrix_options options = full_options();
    Pictures pictures;
    DeleteDest();
    SetDest(pictures.map.data(), kRows, kCols);
    SetDest(pictures.heights.data(), kRows, kCols);
    SetDest(pictures.heights.data(), kRows, kCols);
    SetDest(pictures.occlusion.data(), kRows, kCols);
    EXPECT_TRUE(PostProcess_GPU({}, pictures.map.data(), kRows, kCols, options));
    EXPECT_TRUE(PreProcess_GPU({}, pictures.heights.data(), kRows, kCols, options));
    GetDest(pictures.map.data(), kRows, kCols);
    GetDest(pictures.heights.data(), kRows, kCols);
    DirectionalAO_GPU(pictures.heights.data(), kRows, kCols, 12, 60.0f, 100.0f, 0.8f, 0, true, false, true, 0,
                      nullptr);
    GetDest(pictures.occlusion.data(), kRows, kCols);
    EXPECT_TRUE(HeightToNormal_GPU({}, pictures.heights.data(), kRows, kCols, 3.0f, 0.6f, 2.0f, 0.0f, nullptr,
                                   nullptr));
    GetDest(pictures.normals.data(), kRows, kCols);
    UmbrixNormal_GPU({}, nullptr, Modes_FlatIsFull, kRows, kCols);
    GetDest(pictures.light.data(), kRows, kCols);
    DeleteSrc();
    DeleteDest();
    DeleteDest();
    expect_same(expected, pictures, 0);
}

TEST(CoralithExports, AnUnknownDeviceMeansTheHost)
{
    SetReportHandler([](char const*) {});
    Pictures const expected = of_the_processor();
    expect_same(expected, of_device(77), 0);
    EXPECT_STREQ(ActiveBackend(), "host");
    EXPECT_NE(std::string(LastError()).find("77"), std::string::npos);
    expect_same(expected, of_device(-1), 0);
    expect_same(expected, of_device(0), 0);
    EXPECT_STRNE(ActiveBackend(), "host") << LastError();
    SetReportHandler(nullptr);
}

TEST(CoralithExports, DevicesMayBeLookedForFromTwoThreads)
{
    int counts[2] = {};
    std::thread first([&] { counts[0] = DeviceCount(); });
    std::thread second([&] { counts[1] = DeviceCount(); });
    first.join();
    second.join();
    EXPECT_EQ(counts[0], counts[1]);
    EXPECT_GE(counts[0], 2);
    expect_same(of_the_processor(), of_device(0), 0);
}

/// Runs one test of this program in a process of its own.
pid_t spawn_test(char const* filter)
{
    std::string const argument = std::string("--gtest_filter=") + filter;
    std::string program = "/proc/self/exe";
    char* const arguments[] = {program.data(), const_cast<char*>(argument.c_str()), nullptr};
    pid_t child = -1;
    EXPECT_EQ(posix_spawn(&child, program.c_str(), nullptr, nullptr, arguments, environ), 0);
    return child;
}

bool succeeded(pid_t child)
{
    int status = -1;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST(CoralithExports, TwoProcessesMayWorkAtOnce)
{
    pid_t const first = spawn_test("CoralithExports.EveryDeviceGivesTheProcessorsPictures");
    pid_t const second = spawn_test("CoralithExports.EveryDeviceGivesTheProcessorsPictures");
    EXPECT_TRUE(succeeded(first));
    EXPECT_TRUE(succeeded(second));
}

TEST(CoralithExports, AForkedChildOfAUserRunsOnTheHost)
{
    Pictures const expected = of_the_processor();
    ASSERT_TRUE(same(expected, of_device(0)));
    SetReportHandler([](char const*) {});
    pid_t const child = fork();
    if (child == 0) {
        alarm(60); // rather than hang for good
        bool const right = same(expected, of_device(0)) && ActiveBackend() == std::string("host") &&
                           std::string(LastError()).find("forked") != std::string::npos;
        _exit(right ? 0 : 1);
    }
    EXPECT_TRUE(succeeded(child));
    SetReportHandler(nullptr);
    EXPECT_TRUE(same(expected, of_device(0))) << "the parent keeps its device";
    EXPECT_STRNE(ActiveBackend(), "host");
}

TEST(CoralithExports, AStopOfTheOcclusionLeavesNoResultAndRetiresNoDevice)
{
    std::vector<float> heights = random_image<float>(kTexels, 1);
    for (int device = 0; device < DeviceCount(); ++device) {
        auto const run = [&](int progress) {
            DirectionalAO_GPU(heights.data(), kRows, kCols, 12, 60.0f, 100.0f, 0.8f, device, true, false,
                              false, 0, &progress);
            return progress;
        };
        std::vector<float3> result(kTexels, float3{-7.0f, -7.0f, -7.0f});
        EXPECT_EQ(run(INT_MIN), INT_MIN);
        GetDest(result.data(), kRows, kCols);
        EXPECT_EQ(result.front().x, -7.0f) << "there is no result";
        std::string const backend = ActiveBackend();
        EXPECT_EQ(run(0), 1000);
        EXPECT_EQ(ActiveBackend(), backend);
        GetDest(result.data(), kRows, kCols);
        EXPECT_GE(result.front().x, 0.0f);
        DeleteDest();
        DeleteSrc();
    }
}

} // namespace
