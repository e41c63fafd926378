// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/textures/mipmaps.h"
#include "toolkit/textures/texture_format.h"

#include <cstdint>
#include <span>

namespace umbrixlib::toolkit {

/// Stores row @p row of the blocks of @p level in @p to, which has room for it. A channel that the level has
/// not got is 1.
void store_row(TextureLevel const& level, int row, TextureForm const& form, bool normals,
               std::span<std::uint8_t> to);

} // namespace umbrixlib::toolkit
