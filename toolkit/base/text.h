// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace umbrixlib::toolkit {

/// @p text with the letters A to Z in lower case; all other bytes stay, whatever the locale.
inline std::string lower_case(std::string_view text)
{
    std::string result(text);
    for (char& letter : result) {
        if (letter >= 'A' && letter <= 'Z') {
            letter = static_cast<char>(letter - 'A' + 'a');
        }
    }
    return result;
}

} // namespace umbrixlib::toolkit
