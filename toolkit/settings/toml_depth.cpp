// SPDX-License-Identifier: MIT
#include "toolkit/settings/toml_depth.h"

#include <algorithm>
#include <string>

namespace umbrixlib::toolkit {

namespace {

/// Where the string that begins at @p start ends: behind its quotes, or at the end of its line or of the text
/// if it has none.
std::size_t end_of_string(std::string_view text, std::size_t start)
{
    char const quote = text[start];
    std::string const three(3, quote);
    bool const is_long = text.substr(start).starts_with(three);
    for (std::size_t at = start + (is_long ? 3 : 1); at < text.size(); ++at) {
        if (quote == '"' && text[at] == '\\') {
            ++at;
        } else if (is_long && text.substr(at).starts_with(three)) {
            at += 3;
            for (int own = 0; own < 2 && at < text.size() && text[at] == quote; ++own) {
                ++at; // up to two quotes before the last three are the string's own
            }
            return at;
        } else if (!is_long && (text[at] == quote || text[at] == '\n')) {
            return at + 1;
        }
    }
    return text.size();
}

} // namespace

std::optional<std::size_t> line_nested_deeper(std::string_view text, std::size_t most)
{
    auto const line_of = [&](std::size_t at) {
        auto const end = text.begin() + static_cast<std::ptrdiff_t>(at);
        return 1 + static_cast<std::size_t>(std::count(text.begin(), end, '\n'));
    };
    std::size_t open = 0; // brackets
    std::size_t dots = 0; // of one key
    for (std::size_t at = 0; at < text.size();) {
        switch (text[at]) {
        case '"':
        case '\'':
            at = end_of_string(text, at);
            continue;
        case '#':
            at = std::min(text.find('\n', at), text.size());
            continue;
        case '[':
        case '{':
            dots = 0;
            ++open;
            break;
        case ']':
        case '}':
            dots = 0;
            open -= open > 0 ? 1 : 0;
            break;
        case '.':
            ++dots;
            break;
        case '=':
        case ',':
        case '\n':
            dots = 0;
            break;
        default:
            break;
        }
        if (open > most || dots >= most) {
            return line_of(at);
        }
        ++at;
    }
    return std::nullopt;
}

} // namespace umbrixlib::toolkit
