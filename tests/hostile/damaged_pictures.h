// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Damaged pictures of all formats: the same ones in each run and for all tests. They are made from those of
/// tests/pictures.

#include "picture_files.h"

#include <algorithm>
#include <filesystem>
#include <random>

namespace umbrixlib::test {

/// A damaged copy of @p file: cut short, with bits turned over, or with bytes replaced. Half of the changes
/// fall into the first 64 bytes, where the formats keep sizes and counts.
inline Bytes corrupted(Bytes file, std::mt19937& random)
{
    auto const below = [&](std::size_t limit) { return static_cast<std::size_t>(random() % limit); };
    auto const place = [&] {
        return below(random() % 2 == 0 ? std::min<std::size_t>(64, file.size()) : file.size());
    };
    auto const times = 1 + below(8);
    switch (random() % 3) {
    case 0:
        file.resize(below(file.size()));
        break;
    case 1:
        for (std::size_t i = 0; i < times; ++i) {
            file[place()] ^= static_cast<std::uint8_t>(1U << below(8));
        }
        break;
    default:
        for (std::size_t i = 0; i < times; ++i) {
            constexpr std::uint8_t kTelling[] = {0, 1, 0x7f, 0x80, 0xfe, 0xff};
            file[place()] = random() % 2 == 0 ? kTelling[below(6)] : static_cast<std::uint8_t>(random());
        }
    }
    return file;
}

struct DamagedPicture {
    std::string format;  ///< A folder of tests/pictures/files.
    std::size_t variant; ///< 0: unharmed.
    std::string extension;
    Bytes bytes;

    /// "tga17.tga"
    std::string name() const { return format + std::to_string(variant) + extension; }
};

/// A folder of tests/pictures/files, and the file in it that is the unharmed one: any command takes it.
struct PictureFolder {
    char const* format;
    char const* unharmed;
};

constexpr PictureFolder kPictureFolders[] = {
    {"alias", "ffmpeg.pix"},     {"bmp", "rgb24.bmp"},     {"dds", "dxt1.dds"},
    {"exr", "half_rgb_zip.exr"}, {"fits", "bytes.fits"},   {"gif", "magick.gif"},
    {"hdr", "unit.hdr"},         {"ico", "rgba.ico"},      {"jpeg", "ycbcr_444.jpg"},
    {"pam", "rgb_65535.pam"},    {"pcx", "rgb.pcx"},       {"pfm", "unit.pfm"},
    {"png", "channels3_16.png"}, {"pnm", "most_255.ppm"},  {"psd", "rgb8_runs.psd"},
    {"raw", "heights.r16"},      {"sgi", "rgb_runs.sgi"},  {"softimage", "run_lengths.pic"},
    {"sun", "rgb2.ras"},         {"tga", "rgb_runs.tga"},  {"tiff", "lzw_predictor.tif"},
    {"vtf", "form0.vtf"},        {"webp", "lossless.webp"}};

constexpr std::size_t kDamagedVariants = 112; ///< Of each format, the unharmed file included.

/// The files of a folder in the order of their names, the unharmed one first. Without the one that is not
/// called like a picture, which no batch finds.
inline std::vector<std::filesystem::path> seeds_of(PictureFolder const& folder)
{
    std::filesystem::path const place = std::filesystem::path(UMBRIX_PICTURES) / "files" / folder.format;
    std::vector<std::filesystem::path> seeds;
    for (auto const& entry : std::filesystem::directory_iterator(place)) {
        if (entry.path().filename() != folder.unharmed && entry.path().extension() != ".bin") {
            seeds.push_back(entry.path());
        }
    }
    std::sort(seeds.begin(), seeds.end());
    seeds.insert(seeds.begin(), place / folder.unharmed);
    return seeds;
}

/// Every @p step-th variant of each format.
inline std::vector<DamagedPicture> damaged_pictures(std::size_t step)
{
    std::vector<DamagedPicture> pictures;
    for (PictureFolder const& folder : kPictureFolders) {
        auto const seeds = seeds_of(folder);
        for (std::size_t i = 0; i < kDamagedVariants; i += step) {
            auto const& seed = seeds[i % seeds.size()];
            std::string const format = folder.format;
            std::seed_seq start(format.begin(), format.end());
            std::mt19937 random(start);
            random.discard(1000 * i);
            Bytes const good = read_file(seed);
            pictures.push_back(
                {format, i, seed.extension().string(), i == 0 ? good : corrupted(good, random)});
        }
    }
    return pictures;
}

} // namespace umbrixlib::test
