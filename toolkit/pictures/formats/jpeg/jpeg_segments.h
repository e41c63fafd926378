// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace umbrixlib::toolkit {

/// The JPEG @p file without what it tells beside its texels: EXIF, XMP, profiles, comments, and what follows
/// its end. Empty for one that shows otherwise in a browser, or not at all: turned by its EXIF, in inks, of
/// more than 8 bits, of a rare kind; and for one that is not built as expected.
std::optional<std::vector<std::uint8_t>> bare_jpeg(std::span<std::uint8_t const> file);

} // namespace umbrixlib::toolkit
