// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/textures/texture.h"

#include <cstdint>
#include <vector>

namespace umbrixlib::toolkit {

/// What stands in a DDS file before the levels of @p texture, which follow it from the largest to the
/// smallest. Microsoft, "Programming Guide for DDS" and "DDS_HEADER_DXT10 structure".
std::vector<std::uint8_t> dds_header(Texture const& texture);

} // namespace umbrixlib::toolkit
