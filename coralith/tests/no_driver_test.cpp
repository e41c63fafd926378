// SPDX-License-Identifier: MIT

/// The library where the OpenCL loader finds no driver. Run with OCL_ICD_VENDORS naming an empty folder.

#include "boundary/gpu_library.h"
#include "boundary/texture_kernels.h"
#include "same_bits.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

std::vector<std::string> lines;

TEST(CoralithWithoutDriver, TheHostIsTheOnlyDeviceAndRunsTheStages)
{
    SetReportHandler([](char const* line) { lines.emplace_back(line); });
    ASSERT_EQ(DeviceCount(), 1);
    EXPECT_STREQ(DeviceName(0), "Processor");
    EXPECT_EQ(DeviceName(1), nullptr);
    EXPECT_STREQ(ActiveBackend(), "host");
    for (int i = 0; i < 2; ++i) {
        std::vector<float3> normals = {{0, 0, 1}, {0.6f, 0, 0.8f}, {0, -0.6f, 0.8f}};
        std::vector<float3> expected = normals;
        Normal2Umbrix(expected.data(), 1, 3, Modes_Projection, 0, 1);
        SetDevice(0);
        SetDest(normals.data(), 1, 3);
        UmbrixNormal_GPU({}, normals.data(), Modes_Projection, 1, 3);
        GetDest(normals.data(), 1, 3);
        DeleteDest();
        EXPECT_SAME_BITS(expected, normals);
    }
    ASSERT_EQ(lines.size(), 1U) << "said once";
    EXPECT_EQ(lines[0].rfind("no device, the host runs every stage", 0), 0U) << lines[0];
    EXPECT_NE(lines[0].find("no OpenCL: "), std::string::npos) << lines[0];
    EXPECT_EQ(lines[0], LastError());
}

} // namespace
