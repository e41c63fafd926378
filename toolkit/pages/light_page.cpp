// SPDX-License-Identifier: MIT
#include "toolkit/pages/light_page.h"

#include "toolkit/base/utf8.h"
#include "toolkit/pages/base64.h"
#include "toolkit/pages/page_texts.h"

#include <charconv>
#include <string_view>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

std::string escaped(std::string const& text)
{
    std::string result;
    for (char const letter : printable(text)) {
        switch (letter) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += letter;
        }
    }
    return result;
}

/// A hash in the letters of a policy, from its hexadecimal digits.
std::string in_policy(std::string_view digits)
{
    std::vector<std::uint8_t> bytes(digits.size() / 2);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        std::from_chars(&digits[2 * i], &digits[2 * i] + 2, bytes[i], 16);
    }
    return base64(bytes);
}

std::string data_address(WebPicture const& picture)
{
    return "data:" + picture.type + ";base64," + base64(picture.bytes);
}

} // namespace

std::string html_of(LightPage const& page)
{
    std::string const albedo = page.albedo.bytes.empty() ? ""
                                                         : "<img id=\"albedo\" alt=\"\" src=\"" +
                                                               data_address(page.albedo) + "\" hidden>\n";
    std::pair<std::string_view, std::string> const places[] = {{"{title}", escaped(page.title)},
                                                               {"{mode}", escaped(page.mode)},
                                                               {"{map}", data_address(page.map)},
                                                               {"{albedo}", albedo},
                                                               {"{style}", kPageCss},
                                                               {"{script}", kPageJs},
                                                               {"{style_hash}", in_policy(kPageCssHash)},
                                                               {"{script_hash}", in_policy(kPageJsHash)}};
    std::string html;
    std::string_view rest = kPageHtml;
    // Once from start to end: what fills a place may hold the name of another.
    while (!rest.empty()) {
        bool filled = false;
        for (auto const& [name, text] : places) {
            if (rest.starts_with(name)) {
                html += text;
                rest.remove_prefix(name.size());
                filled = true;
                break;
            }
        }
        if (!filled) {
            std::size_t const next = std::min(rest.find('{', 1), rest.size());
            html += rest.substr(0, next);
            rest.remove_prefix(next);
        }
    }
    return html;
}

} // namespace umbrixlib::toolkit
