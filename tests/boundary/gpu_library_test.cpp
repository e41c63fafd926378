// SPDX-License-Identifier: MIT
#include "boundary/gpu_library.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

TEST(GpuLibrary, AnswersThatThereIsNoDevice)
{
    EXPECT_EQ(DeviceCount(), 0);
    EXPECT_EQ(DeviceName(0), nullptr);
}

TEST(GpuLibrary, StagesSayThatTheyDidNotRunAndLeaveBuffersAlone)
{
    GPU_opt const gpu = {};
    umbrix_options options = {};
    std::vector<float> heights(4, 0.5f);
    std::vector<float3> normals(4, float3{0.1f, 0.2f, 0.3f});
    std::vector<float4> map(4, float4{0.1f, 0.2f, 0.3f, 0.4f});
    std::string status = "before";
    int progress = 7;
    SetDevice(0);
    SetDest(heights.data(), 2, 2);
    SetDest(normals.data(), 2, 2);
    SetDest(map.data(), 2, 2);
    SetSrc(heights.data(), 2, 2);
    SetSrc(normals.data(), 2, 2);
    EXPECT_FALSE(PreProcess_GPU(gpu, heights.data(), 2, 2, options));
    EXPECT_FALSE(PostProcess_GPU(gpu, map.data(), 2, 2, options));
    EXPECT_FALSE(HeightToNormal_GPU(gpu, heights.data(), 2, 2, 1.0f, 0.0f, 0.0f, 0.0f, &status, &progress));
    UmbrixNormal_GPU(gpu, normals.data(), 0, 2, 2);
    DirectionalAO_GPU(heights.data(), 2, 2, 4, 90.0f, 90.0f, 0.5f, 0, true, true, true, 0, &progress);
    GetDest(heights.data(), 2, 2);
    GetDest(normals.data(), 2, 2);
    GetDest(map.data(), 2, 2);
    DeleteDest();
    DeleteDest();
    DeleteSrc();
    EXPECT_EQ(heights[3], 0.5f);
    EXPECT_EQ(normals[3].z, 0.3f);
    EXPECT_EQ(map[3].w, 0.4f);
    EXPECT_EQ(status, "before");
    EXPECT_EQ(progress, 7);
}

} // namespace
