// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace umbrix_desktop {

/// What the program is called with.
struct Arguments {
    std::string file;       ///< To open; "": none.
    std::string screenshot; ///< File that the window is written to; "": none.
    bool help = false;
    bool version = false;
    std::string fault; ///< One sentence if they are not right. Else "".

    bool operator==(Arguments const&) const = default;
};

/// @param words Those behind the program's name.
Arguments parse_arguments(std::vector<std::string> const& words);

/// The text of --help.
std::string help_text();

} // namespace umbrix_desktop
