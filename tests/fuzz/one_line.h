// SPDX-License-Identifier: MIT
#pragma once

#include "demand.h"
#include "toolkit/base/utf8.h"

#include <string>
#include <string_view>

namespace umbrixlib::fuzz {

/// Demands that @p text is one line that a terminal shows as it is, with its end.
inline void demand_one_line(std::string_view text)
{
    demand(text.size() > 1 && text.back() == '\n', "a message is a line");
    text.remove_suffix(1);
    std::string const shown = umbrixlib::toolkit::printable(text);
    demand(shown == text, "a message holds no control characters: " + shown);
}

} // namespace umbrixlib::fuzz
