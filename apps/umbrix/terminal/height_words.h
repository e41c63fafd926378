// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/heights/height_reading.h"
#include "toolkit_names.h"

#include <fmt/format.h>
#include <optional>
#include <string>

namespace umbrix_cli {

/// ", heights from -0.5 to 3.2", or nothing if 0 and 1 stayed what they are.
inline std::string told(std::optional<HeightRange> const& range)
{
    return range ? fmt::format(", heights from {:.6g} to {:.6g}", range->low, range->high) : "";
}

} // namespace umbrix_cli
