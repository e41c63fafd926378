// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace umbrixlib::toolkit {

/// @p bytes in letters, with padding (RFC 4648, section 4).
std::string base64(std::span<std::uint8_t const> bytes);

} // namespace umbrixlib::toolkit
