// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace umbrixlib::bench {

/// What a loop did, and what came out of it. The caller uses the result, or the compiler removes the loop.
struct Work {
    double operations = 0.0;
    std::size_t lanes = 1; ///< Operations that one instruction does.
    double result = 0.0;
};

} // namespace umbrixlib::bench
