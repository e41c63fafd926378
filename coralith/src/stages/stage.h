// SPDX-License-Identifier: MIT
#pragma once

namespace coralith {

enum class Stage { kPreProcess, kPostProcess, kHeightToNormal, kUmbrixNormal, kDirectionalOcclusion };
inline constexpr int kStages = 5;

/// The exported name, for reports.
constexpr char const* name_of(Stage stage)
{
    switch (stage) {
    case Stage::kPreProcess:
        return "PreProcess_GPU";
    case Stage::kPostProcess:
        return "PostProcess_GPU";
    case Stage::kHeightToNormal:
        return "HeightToNormal_GPU";
    case Stage::kUmbrixNormal:
        return "UmbrixNormal_GPU";
    case Stage::kDirectionalOcclusion:
        break;
    }
    return "DirectionalAO_GPU";
}

/// Whether the kernels of @p stage compute in double.
constexpr bool needs_double(Stage stage)
{
    return stage != Stage::kDirectionalOcclusion;
}

} // namespace coralith
