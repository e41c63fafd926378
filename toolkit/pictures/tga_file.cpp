// SPDX-License-Identifier: MIT
#include "toolkit/pictures/tga_file.h"

#include <array>
#include <cstdio>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

constexpr std::size_t kHeaderSize = 18;

std::array<std::uint8_t, kHeaderSize> header_of(Picture const& picture)
{
    auto const low = [](int value) { return static_cast<std::uint8_t>(value & 255); };
    auto const high = [](int value) { return static_cast<std::uint8_t>(value >> 8); };
    std::array<std::uint8_t, kHeaderSize> header{};
    header[2] = 2; // uncompressed colours
    header[12] = low(picture.width);
    header[13] = high(picture.width);
    header[14] = low(picture.height);
    header[15] = high(picture.height);
    header[16] = low(picture.channels * 8);
    header[17] = picture.channels == 4 ? 8 : 0; // bits of alpha; the first row is the bottom one
    return header;
}

} // namespace

bool write_tga(std::filesystem::path const& file, Picture const& picture)
{
    auto const channels = static_cast<std::size_t>(picture.channels);
    auto const row_bytes = static_cast<std::size_t>(picture.width) * channels;
    std::FILE* const stream = std::fopen(file.c_str(), "wbe");
    bool good = stream != nullptr;
    if (good) {
        auto const header = header_of(picture);
        good = std::fwrite(header.data(), header.size(), 1, stream) == 1;
        std::vector<std::uint8_t> row;
        for (std::size_t at = 0; good && at < picture.bytes.size(); at += row_bytes) {
            auto const first = picture.bytes.begin() + static_cast<std::ptrdiff_t>(at);
            row.assign(first, first + static_cast<std::ptrdiff_t>(row_bytes));
            for (std::size_t i = 0; i < row_bytes; i += channels) {
                std::swap(row[i], row[i + 2]);
            }
            good = std::fwrite(row.data(), row_bytes, 1, stream) == 1;
        }
        good = std::fclose(stream) == 0 && good;
    }
    return good;
}

std::uintmax_t tga_size(int width, int height, int channels)
{
    return kHeaderSize + static_cast<std::uintmax_t>(width) * static_cast<std::uintmax_t>(height) *
                             static_cast<std::uintmax_t>(channels);
}

} // namespace umbrixlib::toolkit
