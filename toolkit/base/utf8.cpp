// SPDX-License-Identifier: MIT
#include "toolkit/base/utf8.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

unsigned byte_at(std::string_view text, std::size_t at)
{
    return static_cast<unsigned char>(text[at]);
}

bool is_control(char32_t code)
{
    return code < 0x20 || (code >= 0x7f && code < 0xa0);
}

/// The characters of Unicode's category Cf, its separators of lines, and the others that it calls ignorable
/// by default. First and last, in their order.
constexpr std::pair<char32_t, char32_t> kUnseen[] = {
    {0x00ad, 0x00ad},   {0x034f, 0x034f},   {0x0600, 0x0605},   {0x061c, 0x061c},   {0x06dd, 0x06dd},
    {0x070f, 0x070f},   {0x0890, 0x0891},   {0x08e2, 0x08e2},   {0x115f, 0x1160},   {0x17b4, 0x17b5},
    {0x180b, 0x180f},   {0x200b, 0x200f},   {0x2028, 0x202e},   {0x2060, 0x206f},   {0x3164, 0x3164},
    {0xfe00, 0xfe0f},   {0xfeff, 0xfeff},   {0xffa0, 0xffa0},   {0xfff0, 0xfffb},   {0x110bd, 0x110bd},
    {0x110cd, 0x110cd}, {0x13430, 0x1343f}, {0x1bca0, 0x1bca3}, {0x1d173, 0x1d17a}, {0xe0000, 0xe0fff}};

/// A character that is not seen, by its number.
std::string by_number(char32_t code)
{
    auto const number = static_cast<unsigned>(code);
    return number < 0x80      ? fmt::format("\\x{:02X}", number)
           : number < 0x10000 ? fmt::format("\\u{:04X}", number)
                              : fmt::format("\\U{:08X}", number);
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

char32_t code_point(std::string_view text)
{
    std::size_t const length = utf8_length(text);
    constexpr unsigned kBitsOfFirst[] = {0, 0x7f, 0x1f, 0x0f, 0x07};
    char32_t code = length == 0 ? 0 : byte_at(text, 0) & kBitsOfFirst[length];
    for (std::size_t i = 1; i < length; ++i) {
        code = code << 6U | (byte_at(text, i) & 0x3fU);
    }
    return code;
}

bool is_unseen(char32_t code)
{
    auto const holds = [code](auto const& range) { return range.first <= code && code <= range.second; };
    return is_control(code) || std::ranges::any_of(kUnseen, holds);
}

bool has_control_characters(std::string_view text)
{
    while (!text.empty()) {
        std::size_t const length = utf8_length(text);
        if (length > 0 && is_control(code_point(text))) {
            return true;
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return false;
}

std::string printable(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        std::size_t const length = utf8_length(text);
        if (length == 0) {
            result += fmt::format("\\x{:02X}", byte_at(text, 0));
        } else if (char32_t const code = code_point(text); is_unseen(code)) {
            result += by_number(code);
        } else {
            result += text.substr(0, length);
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
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
