// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/picture_view.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>

namespace umbrixlib::toolkit {

/// What options and keys call the types of samples, in their order.
inline constexpr char const* kDepthNames[] = {"8", "16", "half", "float"};

constexpr char const* name_of(SampleType depth)
{
    return kDepthNames[static_cast<int>(depth)];
}

inline std::optional<SampleType> depth_called(std::string_view name)
{
    auto const* const found = std::ranges::find(kDepthNames, name);
    return found == std::end(kDepthNames) ? std::nullopt
                                          : std::optional(static_cast<SampleType>(found - kDepthNames));
}

} // namespace umbrixlib::toolkit
