// SPDX-License-Identifier: MIT
#include "toolkit/base/json_text.h"

#include "toolkit/base/utf8.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace umbrixlib::toolkit {

namespace {

constexpr unsigned kByteBase = 0xdc00;
constexpr std::size_t kEscape = 6; // "\u0000"

bool is_high_surrogate(unsigned code)
{
    return code >= 0xd800 && code < 0xdc00;
}

bool is_byte(unsigned code)
{
    return code >= kByteBase + 0x80 && code <= kByteBase + 0xff;
}

/// A character as \u202e, or as two of those.
std::string escaped(char32_t code)
{
    auto const number = static_cast<unsigned>(code);
    if (number < 0x10000) {
        return fmt::format("\\u{:04x}", number);
    }
    unsigned const rest = number - 0x10000;
    return fmt::format("\\u{:04x}\\u{:04x}", 0xd800 + (rest >> 10U), 0xdc00 + (rest & 0x3ffU));
}

/// An ASCII character as it stands in a string of JSON.
std::string quoted_ascii(char letter)
{
    constexpr std::string_view kLetters = "\"\\\b\f\n\r\t";
    constexpr std::string_view kNames = "\"\\bfnrt";
    if (std::size_t const at = kLetters.find(letter); at != std::string_view::npos) {
        return {'\\', kNames[at]};
    }
    auto const code = static_cast<unsigned char>(letter);
    return code < 0x20 ? escaped(code) : std::string(1, letter);
}

std::string quoted(std::string_view text, Unseen unseen)
{
    std::string result = "\"";
    while (!text.empty()) {
        std::size_t const length = utf8_length(text);
        if (length == 0) {
            result += escaped(kByteBase + static_cast<unsigned char>(text[0]));
        } else if (char32_t const code = code_point(text);
                   unseen == Unseen::kAsNumbers && code >= 0x7f && is_unseen(code)) {
            result += escaped(code);
        } else if (length == 1) {
            result += quoted_ascii(text[0]);
        } else {
            result += text.substr(0, length);
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return result + '"';
}

class Writer {
public:
    Writer(int indent, Unseen unseen) : indent_(indent), unseen_(unseen) {}

    void write(nlohmann::ordered_json const& value, int level)
    {
        if (value.is_string()) {
            text += quoted(value.get_ref<std::string const&>(), unseen_);
        } else if (!value.is_structured() || value.empty()) {
            text += value.dump();
        } else {
            text += value.is_object() ? '{' : '[';
            for (auto each = value.begin(); each != value.end(); ++each) {
                text += each == value.begin() ? "" : ",";
                begin_line(level + 1);
                if (value.is_object()) {
                    text += quoted(each.key(), unseen_) + (indent_ < 0 ? ":" : ": ");
                }
                write(*each, level + 1);
            }
            begin_line(level);
            text += value.is_object() ? '}' : ']';
        }
    }

    std::string text;

private:
    void begin_line(int level)
    {
        if (indent_ >= 0) {
            text += '\n' + std::string(static_cast<std::size_t>(level * indent_), ' ');
        }
    }

    int indent_;
    Unseen unseen_;
};

/// The number of the "\u0000" that stands at the start of @p text; 0 if none does.
unsigned escape_at(std::string_view text)
{
    unsigned code = 0;
    if (text.size() < kEscape || !text.starts_with("\\u")) {
        return 0;
    }
    auto const [stop, error] = std::from_chars(text.data() + 2, text.data() + kEscape, code, 16);
    return error == std::errc() && stop == text.data() + kEscape ? code : 0;
}

/// @p text for a parser that takes no lone surrogates: a byte as \u0000 and its number, and \u0000 twice.
std::string with_marks(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        unsigned const code = escape_at(text);
        std::size_t taken = text[0] == '\\' ? 2 : 1;
        if (is_high_surrogate(code)) {
            taken = 2 * kEscape; // with the low one that belongs to it
        } else if (is_byte(code)) {
            result += fmt::format("\\u0000\\u{:04x}", code - kByteBase);
            text.remove_prefix(kEscape);
            continue;
        } else if (text.starts_with("\\u0000")) {
            result += "\\u0000";
            taken = kEscape;
        }
        taken = std::min(taken, text.size());
        result += text.substr(0, taken);
        text.remove_prefix(taken);
    }
    return result;
}

std::string without_marks(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        bool const marked = text[0] == '\0';
        text.remove_prefix(marked ? 1 : 0);
        char32_t const code = code_point(text);
        bool const byte = marked && code != 0;
        std::size_t const taken = byte ? utf8_length(text) : 1;
        result += byte ? static_cast<char>(code) : text[0];
        text.remove_prefix(taken);
    }
    return result;
}

} // namespace

std::string to_json_text(nlohmann::ordered_json const& value, int indent, Unseen unseen)
{
    Writer writer(indent, unseen);
    writer.write(value, 0);
    return writer.text;
}

nlohmann::json from_json_text(std::string_view text)
{
    auto const take = [](int /*depth*/, nlohmann::json::parse_event_t event, nlohmann::json& value) {
        if (event == nlohmann::json::parse_event_t::value && value.is_string()) {
            value = without_marks(value.get_ref<std::string const&>());
        }
        return true;
    };
    return nlohmann::json::parse(with_marks(text), take, false);
}

} // namespace umbrixlib::toolkit
