// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encode.h"

#include "toolkit/base/failure.h"
#include "toolkit/files/flush_to_disk.h"
#include "toolkit/files/opened_files.h"
#include "toolkit/pictures/decoded_image.h"
#include "toolkit/pictures/encoder.h"
#include "toolkit/pictures/formats/encoders/output_stream.h"

#include <algorithm>
#include <cstdio>
#include <fmt/format.h>
#include <memory>
#include <sys/statvfs.h>
#include <unistd.h>

namespace umbrixlib::toolkit {

namespace {

bool is_power_of_two(int value)
{
    return (value & (value - 1)) == 0;
}

/// Some formats hold greys as colours.
bool has_same_texels(DecodedImage const& image, Picture const& written)
{
    Picture const& read = image.picture();
    if (read.type != written.type) {
        return false;
    }
    if (read.channels == written.channels) {
        return read.bytes == written.bytes;
    }
    return image.to_picture(written.has_alpha()).bytes == in_colour(written, written.has_alpha()).bytes;
}

bool reads_back(std::filesystem::path const& file, OutputFormat const& format, Picture const& written)
{
    if (auto const holds = format.encoder->holds(file, written)) {
        return *holds;
    }
    try {
        DecodedImage const image(file, "output", static_cast<double>(written.texels()));
        if (image.width() != written.width || image.height() != written.height) {
            return false;
        }
        return !format.lossless || has_same_texels(image, written);
    } catch (Failure const&) {
        return false;
    }
}

bool disk_is_full(std::filesystem::path const& file)
{
    int const descriptor = open_file(file, OpenFor::kReading);
    struct statvfs status = {};
    bool const full = fstatvfs(descriptor, &status) == 0 && status.f_bavail == 0;
    close(descriptor);
    return full;
}

/// Writes and looks at what is on the disk then; both functions say whether all is well. Failures are about
/// @p name.
template <typename Write, typename ReadsAsWritten>
void write_and_check(std::filesystem::path const& file, std::string const& name, Write const& write,
                     ReadsAsWritten const& reads_as_written, Observer& observer)
{
    observer.begin(Phase::kWriting, name);
    bool const saved = write() && flush_to_disk(file);
    observer.begin(Phase::kChecking, name);
    if (saved && reads_as_written()) {
        return;
    }
    if (disk_is_full(file)) {
        throw Failure(Fault::kNotWritten, name, "the disk is full");
    }
    throw Failure(Fault::kNotReadBack, name, "what was written does not read back as it should");
}

bool writes(std::filesystem::path const& file, FileParts const& parts)
{
    OutputStream stream(file);
    for (auto const& part : parts) {
        stream.write(part);
    }
    return stream.close();
}

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// Whether @p file consists of @p parts.
bool consists_of(std::filesystem::path const& file, FileParts const& parts)
{
    std::unique_ptr<std::FILE, CloseFile> const stream(fdopen(open_file(file, OpenFor::kReading), "rb"));
    if (!stream) {
        return false;
    }
    std::vector<std::uint8_t> piece(1U << 20U);
    for (std::span<std::uint8_t const> rest : parts) {
        while (!rest.empty()) {
            std::size_t const size = std::min(piece.size(), rest.size());
            if (std::fread(piece.data(), 1, size, stream.get()) != size ||
                !std::equal(piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(size), rest.begin())) {
                return false;
            }
            rest = rest.subspan(size);
        }
    }
    return std::fgetc(stream.get()) == EOF;
}

} // namespace

void check_size(OutputFormat const& format, std::string const& name, int width, int height)
{
    if (std::max(width, height) > format.longest_side) {
        throw Failure(Fault::kSizeOutsideFormat, name,
                      fmt::format("{} files end at {} texels a side", format.extension, format.longest_side));
    }
    if (format.heights_only && width != height) {
        throw Failure(Fault::kSizeOutsideFormat, name,
                      fmt::format("{} files tell no size, so they hold squares, and not {} x {}",
                                  format.extension, width, height));
    }
    if (format.powers_of_two && !(is_power_of_two(width) && is_power_of_two(height))) {
        throw Failure(Fault::kSizeOutsideFormat, name,
                      fmt::format("{} files have sides of powers of two, not {} x {}", format.extension,
                                  width, height));
    }
}

void write_picture(std::filesystem::path const& file, OutputFormat const& format, std::string const& name,
                   Picture const& picture, Compression compression, Observer& observer)
{
    check_size(format, name, picture.width, picture.height);
    if (format.heights_only && picture.channels > 2) {
        throw no_heights(format, name);
    }
    bool const leaves_alpha_out = picture.has_alpha() && !format.alpha;
    Picture const opaque = leaves_alpha_out ? without_alpha(picture) : Picture{};
    Picture const& stored = leaves_alpha_out ? opaque : picture;
    write_and_check(
        file, name, [&] { return format.encoder->encode_as(file, stored, compression); },
        [&] { return reads_back(file, format, stored); }, observer);
}

void write_parts(std::filesystem::path const& file, std::string const& name, FileParts const& parts,
                 Observer& observer)
{
    write_and_check(
        file, name, [&] { return writes(file, parts); }, [&] { return consists_of(file, parts); }, observer);
}

} // namespace umbrixlib::toolkit
