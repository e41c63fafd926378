// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace umbrixlib::toolkit {

/// Bytes of the character at the start of @p text, 1 to 4, or 0 if no valid UTF-8 stands there.
std::size_t utf8_length(std::string_view text);

bool is_utf8(std::string_view text);

/// Whether there are control characters in @p text, those of Latin-1 (U+0080 to U+009F) and line breaks among
/// them.
bool has_control_characters(std::string_view text);

/// @p text for a terminal: control characters and what is no UTF-8 as \x1B.
std::string printable(std::string_view text);

/// The same for a text of several lines, which stay what they are.
std::string printable_lines(std::string_view text);

} // namespace umbrixlib::toolkit
