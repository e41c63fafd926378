// SPDX-License-Identifier: MIT
#include "toolkit/base/utf8.h"

#include <algorithm>
#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

unsigned byte_at(std::string_view text, std::size_t at)
{
    return static_cast<unsigned char>(text[at]);
}

/// Whether @p text starts with a control character. Those of Latin-1 are two bytes: C2 80 to C2 9F.
bool starts_with_control(std::string_view text)
{
    unsigned const first = byte_at(text, 0);
    return first < 0x20 || first == 0x7f ||
           (first == 0xc2 && utf8_length(text) == 2 && byte_at(text, 1) < 0xa0);
}

} // namespace

std::size_t utf8_length(std::string_view text)
{
    if (text.empty()) {
        return 0;
    }
    unsigned const first = byte_at(text, 0);
    if (first < 0x80) {
        return 1;
    }
    std::size_t const length = first >= 0xf5   ? 0
                               : first >= 0xf0 ? 4
                               : first >= 0xe0 ? 3
                               : first >= 0xc2 ? 2
                                               : 0;
    if (length == 0 || text.size() < length) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte_at(text, i) & 0xc0U) != 0x80) {
            return 0;
        }
    }
    unsigned const second = byte_at(text, 1);
    bool const too_long = (first == 0xe0 && second < 0xa0) || (first == 0xf0 && second < 0x90);
    bool const surrogate = first == 0xed && second >= 0xa0;
    bool const too_large = first == 0xf4 && second >= 0x90;
    return too_long || surrogate || too_large ? 0 : length;
}

bool is_utf8(std::string_view text)
{
    while (!text.empty()) {
        std::size_t const length = utf8_length(text);
        if (length == 0) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

bool has_control_characters(std::string_view text)
{
    while (!text.empty()) {
        if (starts_with_control(text)) {
            return true;
        }
        text.remove_prefix(std::max<std::size_t>(utf8_length(text), 1));
    }
    return false;
}

std::string printable(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        std::size_t const length = utf8_length(text);
        bool const control = starts_with_control(text);
        std::size_t const taken = length == 0 ? 1 : length;
        for (std::size_t i = 0; i < taken; ++i) {
            result +=
                length == 0 || control ? fmt::format("\\x{:02X}", byte_at(text, i)) : std::string(1, text[i]);
        }
        text.remove_prefix(taken);
    }
    return result;
}

std::string printable_lines(std::string_view text)
{
    std::string result;
    for (std::size_t end = 0; (end = text.find('\n')) != std::string_view::npos;
         text.remove_prefix(end + 1)) {
        result += printable(text.substr(0, end)) + '\n';
    }
    return result + printable(text);
}

} // namespace umbrixlib::toolkit
