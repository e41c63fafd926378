// SPDX-License-Identifier: MIT
#pragma once

#include <charconv>
#include <cmath>
#include <optional>
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

/// The finite number that the whole of @p text writes, whatever the locale; empty if it writes none.
inline std::optional<double> number_in(std::string_view text)
{
    double value = 0.0;
    char const* const end = text.data() + text.size();
    auto const [stop, error] = std::from_chars(text.data(), end, value);
    bool const good = error == std::errc() && stop == end && std::isfinite(value);
    return good ? std::optional(value) : std::nullopt;
}

} // namespace umbrixlib::toolkit
