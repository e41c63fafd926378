// SPDX-License-Identifier: MIT
#include "foundation/text.h"

#include <cctype>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace umbrixlib::detail {

namespace {

struct Marker {
    char letter;
    int occurrence; ///< Counted from 1.
};

Marker marker_of(int kind)
{
    switch (kind) {
    case 1:
        return {'e', 1};
    case 2:
        return {'r', 1};
    case 3:
        return {'e', 2};
    default:
        return {'\0', 1}; // the terminator is no part of the text searched
    }
}

int index_of(std::size_t position)
{
    return position == std::string_view::npos ? -1 : static_cast<int>(position);
}

} // namespace

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

void strclr(char* text, int size)
{
    if (size > 0) {
        std::memset(text, 0, static_cast<std::size_t>(size));
    }
}

int strrpos(char* const text, char c)
{
    return index_of(std::string_view(text).rfind(c));
}

int find_drive(int kind, char const* text)
{
    std::string_view const line = text;
    Marker const marker = marker_of(kind);
    std::size_t at = line.find(marker.letter);
    for (int seen = 1; at != std::string_view::npos && seen < marker.occurrence; ++seen) {
        at = line.find(marker.letter, at + 1);
    }
    return at == std::string_view::npos ? -1 : index_of(line.find_first_not_of(" \"", at + 1));
}

void tolower(char* const /*text*/) {}

std::string toupper(char* text)
{
    for (char* each = text; *each != '\0'; ++each) {
        *each = static_cast<char>(std::toupper(static_cast<unsigned char>(*each)));
    }
    return text;
}

} // namespace umbrix_v0
