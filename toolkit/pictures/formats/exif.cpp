// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/exif.h"

namespace umbrixlib::toolkit {

namespace {

constexpr std::uint32_t kOrientationTag = 0x112;
constexpr std::uint32_t kShort = 3; ///< A type: whole numbers of 16 bits.
constexpr std::size_t kEntry = 12;

/// Numbers in the order of bytes that the file begins with. What lies behind its end is 0.
class Numbers {
public:
    explicit Numbers(std::span<std::uint8_t const> bytes)
        : bytes_(bytes), little_(!bytes.empty() && bytes[0] == 'I')
    {
    }

    std::uint32_t at(std::size_t offset, std::size_t size) const
    {
        std::uint32_t number = 0;
        for (std::size_t i = 0; i < size; ++i) {
            std::size_t const place = offset + (little_ ? size - 1 - i : i);
            number = number << 8U | (place < bytes_.size() ? bytes_[place] : 0U);
        }
        return number;
    }

private:
    std::span<std::uint8_t const> bytes_;
    bool little_;
};

} // namespace

int exif_orientation(std::span<std::uint8_t const> exif)
{
    Numbers const numbers(exif);
    if (exif.size() < 8 || exif[0] != exif[1] || (exif[0] != 'I' && exif[0] != 'M') ||
        numbers.at(2, 2) != 42) {
        return 1;
    }
    std::size_t const tags = numbers.at(4, 4);
    std::size_t const count = numbers.at(tags, 2);
    for (std::size_t i = 0; i < count && tags + 2 + (i + 1) * kEntry <= exif.size(); ++i) {
        std::size_t const entry = tags + 2 + i * kEntry;
        if (numbers.at(entry, 2) == kOrientationTag && numbers.at(entry + 2, 2) == kShort) {
            std::uint32_t const orientation = numbers.at(entry + 8, 2);
            return orientation >= 1 && orientation <= 8 ? static_cast<int>(orientation) : 1;
        }
    }
    return 1;
}

} // namespace umbrixlib::toolkit
