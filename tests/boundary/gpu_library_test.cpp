// SPDX-License-Identifier: MIT
#include "boundary/gpu_library.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <vector>

namespace {

// It crosses by value: three words of 32 bits, the bool in the lowest byte of the first.
static_assert(std::is_same_v<decltype(GPU_opt::ao_flag), bool> && offsetof(GPU_opt, ao_flag) == 0);
static_assert(std::is_same_v<decltype(GPU_opt::device), int> && offsetof(GPU_opt, device) == 4);
static_assert(std::is_same_v<decltype(GPU_opt::ao_value), int> && offsetof(GPU_opt, ao_value) == 8);
static_assert(sizeof(GPU_opt) == 12 && alignof(GPU_opt) == 4 && std::is_trivially_copyable_v<GPU_opt>);

constexpr int kHost = -1; // any number that is no device's

TEST(GpuLibrary, CountsTheHostAmongItsDevices)
{
    int const count = DeviceCount();
    ASSERT_GE(count, 1);
    for (int device = 0; device < count; ++device) {
        EXPECT_NE(DeviceName(device), nullptr);
    }
    EXPECT_EQ(DeviceName(count), nullptr);
    EXPECT_EQ(DeviceName(-1), nullptr);
    SetDevice(count - 1);
    EXPECT_STREQ(ActiveBackend(), "host");
}

TEST(GpuLibrary, TheHostRunsAStageThroughItsSlot)
{
    umbrix_options options = {};
    options.h_contrast = -1.0f;
    options.h_max = 255;
    std::vector<float> heights = {0.1f, 0.2f, 0.8f, 0.9f};
    SetDevice(kHost);
    SetDest(heights.data(), 2, 2);
    EXPECT_TRUE(PreProcess_GPU({}, heights.data(), 2, 2, options));
    EXPECT_EQ(heights[3], 0.9f) << "the result waits in the slot";
    GetDest(heights.data(), 2, 2);
    DeleteDest();
    EXPECT_EQ(heights, (std::vector<float>{0.5f, 0.5f, 0.5f, 0.5f})) << "mid-grey";
}

TEST(GpuLibrary, WithoutAResultTheBufferStaysAndTheReasonIsAtHand)
{
    std::vector<std::string> static lines;
    report_handler const before = SetReportHandler([](char const* line) { lines.emplace_back(line); });
    EXPECT_EQ(before, nullptr);
    std::vector<float3> normals(4, float3{0.1f, 0.2f, 0.3f});
    DeleteDest();
    DeleteDest();
    DeleteSrc();
    GetDest(normals.data(), 2, 2);
    EXPECT_EQ(normals[3].z, 0.3f);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0], LastError());
    GetDest(normals.data(), 2, 2);
    EXPECT_EQ(lines.size(), 1U) << "said once";
    EXPECT_NE(SetReportHandler(nullptr), nullptr);
}

} // namespace
