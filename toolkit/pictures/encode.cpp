// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encode.h"

#include "toolkit/base/failure.h"
#include "toolkit/base/worker_channel.h"
#include "toolkit/files/flush_to_disk.h"
#include "toolkit/pictures/decoded_image.h"
#include "toolkit/pictures/devil/devil.h"
#include "toolkit/pictures/devil/devil_writing.h"
#include "toolkit/pictures/devil/tiff_date.h"
#include "toolkit/pictures/tga_file.h"
#include "toolkit/tasks/intermediate.h"

#include <IL/il.h>
#include <algorithm>
#include <fmt/format.h>
#include <sys/statvfs.h>

namespace umbrixlib::toolkit {

namespace {

bool is_power_of_two(int value)
{
    return (value & (value - 1)) == 0;
}

Picture upside_down(Picture const& source)
{
    Picture result = source;
    std::size_t const row = result.bytes.size() / static_cast<std::size_t>(result.height);
    for (std::size_t y = 0; y < static_cast<std::size_t>(result.height); ++y) {
        auto const from = source.bytes.end() - static_cast<std::ptrdiff_t>((y + 1) * row);
        std::copy(from, from + static_cast<std::ptrdiff_t>(row),
                  result.bytes.begin() + static_cast<std::ptrdiff_t>(y * row));
    }
    return result;
}

bool save(std::filesystem::path const& file, Picture const& picture)
{
    if (file.extension() == ".tga") {
        return write_tga(file, picture);
    }
    start_devil();
    WatchedWriting const writing;
    // DevIL takes the pixels without a const, and copies them.
    auto* const bytes = const_cast<std::uint8_t*>(picture.bytes.data());
    ILenum const format = picture.channels == 4 ? IL_RGBA : IL_RGB;
    bool const saved =
        ilTexImage(static_cast<ILuint>(picture.width), static_cast<ILuint>(picture.height), 1,
                   static_cast<ILubyte>(picture.channels), format, IL_UNSIGNED_BYTE, bytes) != 0 &&
        ilSaveImage(file.c_str()) != 0 && writing.went_well();
    stop_devil();
    return saved && (!is_tiff(file) || fix_tiff_date(file));
}

bool reads_back(std::filesystem::path const& file, OutputFormat const& format, Picture const& written)
{
    try {
        DecodedImage const image(file, "output", static_cast<double>(written.texels()));
        if (image.width() != written.width || image.height() != written.height) {
            return false;
        }
        if (!format.lossless) {
            return true;
        }
        bool const with_alpha = written.channels == 4 && format.exact_alpha;
        Picture const read = image.to_picture(with_alpha);
        return read.bytes == (read.channels == written.channels ? written : without_alpha(written)).bytes;
    } catch (Failure const&) {
        return false;
    }
}

bool disk_is_full(std::filesystem::path const& file)
{
    struct statvfs status = {};
    return statvfs(file.c_str(), &status) == 0 && status.f_bavail == 0;
}

} // namespace

void check_size(OutputFormat const& format, int width, int height)
{
    if (std::max(width, height) > format.longest_side) {
        throw Failure(Fault::kSizeOutsideFormat, "output",
                      fmt::format("{} files end at {} texels a side", format.extension, format.longest_side));
    }
    if (format.powers_of_two && !(is_power_of_two(width) && is_power_of_two(height))) {
        throw Failure(Fault::kSizeOutsideFormat, "output",
                      fmt::format("{} files have sides of powers of two, not {} x {}", format.extension,
                                  width, height));
    }
}

void write_picture(std::filesystem::path const& file, OutputFormat const& format, Picture const& picture)
{
    check_size(format, picture.width, picture.height);
    Picture const upright = picture.channels == 4 && !format.alpha ? without_alpha(picture) : picture;
    send_phase(Phase::kWriting);
    bool const saved =
        save(file, format.rows_from_the_top ? upside_down(upright) : upright) && flush_to_disk(file);
    send_phase(Phase::kChecking);
    if (saved && reads_back(file, format, upright)) {
        return;
    }
    if (disk_is_full(file)) {
        throw Failure(Fault::kNotWritten, "output", "the disk is full");
    }
    throw Failure(Fault::kNotReadBack, "output", "what was written does not read back as it should");
}

} // namespace umbrixlib::toolkit
