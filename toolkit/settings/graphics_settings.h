// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

namespace umbrixlib::toolkit {

/// Whether a map is made on a GPU, and how.
struct Graphics {
    std::optional<int> device; ///< Number of the device; empty: on the CPU.
    bool match_cpu = false;    ///< Heights are turned and scaled to those of a map made on the CPU.

    bool operator==(Graphics const&) const = default;
};

} // namespace umbrixlib::toolkit
