// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/plain/header_words.h"

#include <charconv>

namespace umbrixlib::toolkit {

namespace {

constexpr std::size_t kLongestWord = 32;

} // namespace

int HeaderWords::next_letter()
{
    for (;;) {
        int const byte = source_.next();
        if (byte == '#') {
            skip_line();
        } else if (byte < 0) {
            source_.refuse_as_damaged();
        } else if (!is_space(byte)) {
            return byte;
        }
    }
}

std::string HeaderWords::next()
{
    std::string word;
    for (int byte = next_letter(); byte >= 0 && !is_space(byte); byte = source_.next()) {
        if (byte == '#') {
            skip_line();
            break;
        }
        word += static_cast<char>(byte);
        if (word.size() > kLongestWord) {
            source_.refuse_as_damaged();
        }
    }
    return word;
}

int HeaderWords::next_number()
{
    std::string const word = next();
    int number = -1;
    auto const [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc() || end != word.data() + word.size() || number < 0) {
        source_.refuse_as_damaged();
    }
    return number;
}

void HeaderWords::skip_line()
{
    for (int byte = source_.next(); byte >= 0 && byte != '\n';) {
        byte = source_.next();
    }
}

} // namespace umbrixlib::toolkit
