// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace umbrixlib::toolkit {

/// Bytes of the character at the start of @p text, 1 to 4, or 0 if no valid UTF-8 stands there.
std::size_t utf8_length(std::string_view text);

bool is_utf8(std::string_view text);

/// The number of the character at the start of @p text, where valid UTF-8 stands.
char32_t code_point(std::string_view text);

/// Whether a terminal obeys or hides that character instead of showing it: a control character, one that
/// turns the direction of writing, one without a width, or a separator of lines.
bool is_unseen(char32_t code);

/// Whether there are control characters in @p text, those of Latin-1 (U+0080 to U+009F) and line breaks among
/// them.
bool has_control_characters(std::string_view text);

/// @p text for a terminal: bytes that are control characters or no UTF-8 as \x1B, other characters that are
/// not seen as \u202E or \U000E0001.
std::string printable(std::string_view text);

/// The same for a text of several lines, which stay what they are.
std::string printable_lines(std::string_view text);

} // namespace umbrixlib::toolkit
