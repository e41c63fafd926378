// SPDX-License-Identifier: MIT
#pragma once

#include "device/kernel_list.h"

#include <cstddef>

namespace coralith {

struct Text {
    char const* first;
    std::size_t size;
};

/// The dialect and the kernels of each program as text, for drivers that compile at run time. The build makes
/// them from the files in `kernels/`.
extern Text const kDialectText;
extern Text const kProgramTexts[kPrograms];

} // namespace coralith
