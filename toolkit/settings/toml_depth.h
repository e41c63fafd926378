// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace umbrixlib::toolkit {

/// The first line of @p text in which arrays, inline tables or the parts of a dotted key nest deeper than
/// @p most, from 1; none if all is within. The parser and what it makes call themselves once a level, and so
/// need a bound on each. Text that is no TOML is looked at up to where a parser would give up, or further.
std::optional<std::size_t> line_nested_deeper(std::string_view text, std::size_t most);

} // namespace umbrixlib::toolkit
