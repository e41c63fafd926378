// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// What the keys and words of a project file are called, in the order of the values.

namespace umbrix_desktop {

inline constexpr int kProjectVersion = 1;

inline constexpr char const* kShowNames[] = {"source", "normals", "occlusion", "map", "relit"};
inline constexpr char const* kArrangementNames[] = {"one", "split", "side", "difference"};
inline constexpr char const* kChannelNames[] = {"all", "red", "green", "blue", "alpha"};
inline constexpr char const* kWeightNames[] = {"fitted", "exact", "clamped"};
inline constexpr char const* kLayerKinds[] = {"height", "normal"};
inline constexpr char const* kBlendWords[] = {"blend", "overlay", "multiply", "add"};
inline constexpr char const* kSaveDepths[] = {"auto", "8", "16", "half", "float"};
inline constexpr char const* kNoScale = "auto";

} // namespace umbrix_desktop
