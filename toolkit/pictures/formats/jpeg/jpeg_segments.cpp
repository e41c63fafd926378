// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/jpeg/jpeg_segments.h"

#include "toolkit/pictures/formats/exif.h"

#include <algorithm>
#include <string_view>

namespace umbrixlib::toolkit {

namespace {

constexpr std::uint8_t kStartOfScan = 0xda;
constexpr std::uint8_t kEnd = 0xd9;
constexpr std::uint8_t kExif = 0xe1;

/// Frames are 0xc0 to 0xcf, but for tables of codes and a reserved number.
bool is_frame(std::uint8_t marker)
{
    return marker >= 0xc0 && marker <= 0xcf && marker != 0xc4 && marker != 0xc8 && marker != 0xcc;
}

/// JFIF's and Adobe's tell how colours are coded.
bool tells_colours(std::uint8_t marker)
{
    return marker == 0xe0 || marker == 0xee;
}

bool tells_of_the_picture(std::uint8_t marker)
{
    return marker == 0xfe || (marker >= 0xe0 && marker <= 0xef && !tells_colours(marker));
}

bool is_turned(std::span<std::uint8_t const> segment)
{
    std::string_view const head(reinterpret_cast<char const*>(segment.data()), segment.size());
    return head.starts_with(std::string_view("Exif\0\0", 6)) && exif_orientation(segment.subspan(6)) != 1;
}

/// Browsers take baseline, extended and progressive frames.
bool is_common(std::uint8_t marker, std::span<std::uint8_t const> frame)
{
    constexpr std::size_t kComponents = 5; // behind the depth, the height and the width
    return marker <= 0xc2 && frame.size() > kComponents && frame[0] == 8 &&
           (frame[kComponents] == 1 || frame[kComponents] == 3);
}

} // namespace

std::optional<std::vector<std::uint8_t>> bare_jpeg(std::span<std::uint8_t const> file)
{
    if (file.size() < 4 || file[0] != 0xff || file[1] != 0xd8) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> bare{0xff, 0xd8};
    bool has_frame = false;
    for (std::size_t at = 2; at + 4 <= file.size() && file[at] == 0xff;) {
        std::uint8_t const marker = file[at + 1];
        std::size_t const length = file[at + 2] * 256U + file[at + 3]; // with its own two bytes
        if (length < 2 || at + 2 + length > file.size()) {
            return std::nullopt;
        }
        auto const segment = file.subspan(at + 4, length - 2);
        if ((marker == kExif && is_turned(segment)) || (is_frame(marker) && !is_common(marker, segment))) {
            return std::nullopt;
        }
        has_frame = has_frame || is_frame(marker);
        std::size_t end = at + 2 + length;
        if (marker == kStartOfScan) {
            // Its codes end at the next marker; those of restarts, and 0 behind 0xff, are part of them.
            while (end + 1 < file.size() &&
                   (file[end] != 0xff || file[end + 1] == 0 || (file[end + 1] & 0xf8U) == 0xd0)) {
                ++end;
            }
        }
        if (!tells_of_the_picture(marker)) {
            bare.insert(bare.end(), file.begin() + static_cast<std::ptrdiff_t>(at),
                        file.begin() + static_cast<std::ptrdiff_t>(end));
        }
        at = end;
        if (marker == kStartOfScan && at + 2 <= file.size() && file[at + 1] == kEnd) {
            bare.insert(bare.end(), {0xff, kEnd});
            return has_frame ? std::optional(std::move(bare)) : std::nullopt;
        }
    }
    return std::nullopt;
}

} // namespace umbrixlib::toolkit
