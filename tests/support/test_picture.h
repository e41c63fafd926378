// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

namespace umbrixlib::test {

/// An uncompressed TGA picture of 1 (grey), 3 or 4 bytes a pixel, read and written without DevIL. Row 0 is
/// the bottom row.
struct Picture {
    Picture(int picture_width, int picture_height, int picture_channels, unsigned char fill)
        : width(picture_width), height(picture_height), channels(picture_channels),
          bytes(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                    static_cast<std::size_t>(channels),
                fill)
    {
    }

    unsigned char* at(int x, int y) { return bytes.data() + offset(x, y); }
    unsigned char const* at(int x, int y) const { return bytes.data() + offset(x, y); }

    void set(int x, int y, std::array<unsigned char, 3> colour)
    {
        std::copy(colour.begin(), colour.end(), at(x, y));
    }

    void save(std::filesystem::path const& file) const
    {
        std::vector<unsigned char> out(18);
        out[2] = channels == 1 ? 3 : 2;
        out[12] = static_cast<unsigned char>(width);
        out[13] = static_cast<unsigned char>(width >> 8);
        out[14] = static_cast<unsigned char>(height);
        out[15] = static_cast<unsigned char>(height >> 8);
        out[16] = static_cast<unsigned char>(channels * 8);
        out[17] = channels == 4 ? 8 : 0;
        out.insert(out.end(), bytes.begin(), bytes.end());
        swap_red_and_blue(out.data() + 18);
        std::ofstream(file, std::ios::binary)
            .write(reinterpret_cast<char const*>(out.data()), static_cast<std::streamsize>(out.size()));
    }

    static Picture load(std::filesystem::path const& file)
    {
        std::ifstream in(file, std::ios::binary);
        std::vector<unsigned char> const all{std::istreambuf_iterator<char>(in), {}};
        if (all.size() < 18 || (all[2] != 2 && all[2] != 3) || (all[17] & 0x20) != 0) {
            throw std::runtime_error("not a bottom-up uncompressed TGA: " + file.string());
        }
        Picture picture(all[12] + all[13] * 256, all[14] + all[15] * 256, all[16] / 8, 0);
        if (all.size() < 18U + all[0] + picture.bytes.size()) {
            throw std::runtime_error("truncated: " + file.string());
        }
        std::copy_n(all.begin() + 18 + all[0], picture.bytes.size(), picture.bytes.begin());
        picture.swap_red_and_blue(picture.bytes.data());
        return picture;
    }

    int width;
    int height;
    int channels;
    std::vector<unsigned char> bytes;

private:
    std::size_t offset(int x, int y) const
    {
        return (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) *
               static_cast<std::size_t>(channels);
    }

    void swap_red_and_blue(unsigned char* pixels) const
    {
        if (channels >= 3) {
            for (std::size_t i = 0; i < bytes.size(); i += static_cast<std::size_t>(channels)) {
                std::swap(pixels[i], pixels[i + 2]);
            }
        }
    }
};

} // namespace umbrixlib::test
