// SPDX-License-Identifier: MIT
#pragma once

#include "demand.h"
#include "toolkit/base/utf8.h"

#include <string>
#include <string_view>

namespace umbrixlib::fuzz {

/// Demands that @p text, whatever is quoted in it, is one line that a terminal shows as it is once it has
/// been made harmless for it.
inline void demand_one_line(std::string_view text)
{
    std::string const shown = umbrixlib::toolkit::printable(text);
    demand(!shown.empty(), "a message says something");
    demand(!umbrixlib::toolkit::has_control_characters(shown),
           "a message holds no control characters: " + shown);
    demand(umbrixlib::toolkit::printable(shown) == shown, "what is harmless stays as it is: " + shown);
}

} // namespace umbrixlib::fuzz
