// SPDX-License-Identifier: MIT
#include "toolkit/pages/base64.h"

#include <algorithm>

namespace umbrixlib::toolkit {

std::string base64(std::span<std::uint8_t const> bytes)
{
    constexpr char const* kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        std::size_t const count = std::min<std::size_t>(3, bytes.size() - at);
        unsigned bits = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            bits = bits << 8U | (i < count ? bytes[at + i] : 0U);
        }
        for (std::size_t i = 0; i < 4; ++i) {
            text += i <= count ? kLetters[bits >> (18U - 6U * i) & 63U] : '=';
        }
    }
    return text;
}

} // namespace umbrixlib::toolkit
