// SPDX-License-Identifier: MIT
#include "session/self_test.h"

#include "stages/grading.h"
#include "stages/light.h"
#include "stages/normals.h"
#include "stages/occlusion.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace coralith {
namespace {

constexpr Shape kShape = {16, 16};

/// Numbers in -0.25..1.25 without any order.
std::vector<float> test_values(int components)
{
    std::vector<float> values(static_cast<std::size_t>(kShape.texels() * components));
    std::uint32_t state = 1;
    for (float& value : values) {
        state = state * 1664525U + 1013904223U;
        value = static_cast<float>(state >> 8) * 0x1.8p-24f - 0.25f;
    }
    return values;
}

std::vector<float> result_room(Stage stage)
{
    int const components = stage == Stage::kPreProcess ? 1 : stage == Stage::kPostProcess ? 4 : 3;
    return std::vector<float>(static_cast<std::size_t>(kShape.texels() * components));
}

bool run(Backend& backend, Stage stage, float* result)
{
    Grading const grading = {0.3f, 20, 230, 0.1f, 1.5f};
    switch (stage) {
    case Stage::kPreProcess:
        return grade(backend, kShape, 1, grading, test_values(1).data(), result);
    case Stage::kPostProcess:
        return grade(backend, kShape, 4, grading, test_values(4).data(), result);
    case Stage::kHeightToNormal:
        return height_to_normal(backend, kShape, {0.7f, 1.2f, 2.0f}, test_values(1).data(), result);
    case Stage::kUmbrixNormal:
        return light_normals(backend, kShape, 2, test_values(3).data(), result);
    case Stage::kDirectionalOcclusion:
        break;
    }
    Progress unseen(nullptr);
    return directional_occlusion(backend, kShape, {9, 90.0f, 120.0f, 0.6f, true, false},
                                 PortionRule::of(true, 0), test_values(1).data(), result, unseen);
}

} // namespace

SelfTest self_test(Backend& device, Backend& host, Stage stage)
{
    std::vector<float> expected = result_room(stage);
    std::vector<float> got = result_room(stage);
    if (!run(host, stage, expected.data()) || !run(device, stage, got.data())) {
        return SelfTest::kFailed;
    }
    bool const same = std::memcmp(expected.data(), got.data(), got.size() * sizeof(float)) == 0;
    return same ? SelfTest::kPassed : SelfTest::kDiffers;
}

} // namespace coralith
