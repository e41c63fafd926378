// SPDX-License-Identifier: MIT
#include "toolkit/pictures/source_file.h"

#include "toolkit/base/failure.h"
#include "toolkit/files/opened_files.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>
#include <sys/stat.h>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

constexpr double kLongestSide = 65535.0;
constexpr std::size_t kBuffer = 65536;
constexpr double kBytesPerTexel = 32.0;                ///< Four channels of doubles.
constexpr double kMostBesideTexels = 64 * 1024 * 1024; ///< Tags, tables, profiles and thumbnails.

} // namespace

SourceFile::SourceFile(std::filesystem::path path, std::string subject, double max_texels)
    : path_(std::move(path)), subject_(std::move(subject)), max_texels_(max_texels),
      stream_(fdopen(open_file(path_, OpenFor::kReading), "rb"))
{
    if (!stream_) {
        refuse_as_damaged();
    }
    stamp_ = stamp();
    std::setvbuf(stream_.get(), nullptr, _IOFBF, kBuffer);
    head_size_ = std::fread(head_.data(), 1, head_.size(), stream_.get());
}

SourceFile::Stamp SourceFile::stamp() const
{
    struct stat status = {};
    if (!status_of(fileno(stream_.get()), status)) {
        return {};
    }
    return {static_cast<std::int64_t>(status.st_dev),
            static_cast<std::int64_t>(status.st_ino),
            static_cast<std::int64_t>(status.st_nlink),
            status.st_size,
            status.st_mtim.tv_sec,
            status.st_mtim.tv_nsec};
}

bool SourceFile::has_changed() const
{
    return stamp() != stamp_;
}

std::size_t SourceFile::read_some(void* to, std::size_t bytes)
{
    if (bytes == 0) {
        return 0; // to nowhere, from an empty file
    }
    std::size_t const of_head = std::min(bytes, head_size_ - head_read_);
    std::memcpy(to, head_.data() + head_read_, of_head);
    head_read_ += of_head;
    auto* const rest = static_cast<std::uint8_t*>(to) + of_head;
    return of_head + std::fread(rest, 1, bytes - of_head, stream_.get());
}

void SourceFile::read(std::span<std::uint8_t> bytes)
{
    if (!bytes.empty() && read_some(bytes.data(), bytes.size()) != bytes.size()) {
        refuse_as_damaged();
    }
}

void SourceFile::skip(std::size_t bytes)
{
    for (; bytes > 0; --bytes) {
        if (next() < 0) {
            refuse_as_damaged();
        }
    }
}

void SourceFile::rewind()
{
    std::rewind(stream_.get());
    head_size_ = std::fread(head_.data(), 1, head_.size(), stream_.get());
    head_read_ = 0;
}

int SourceFile::next()
{
    return head_read_ < head_size_ ? head_[head_read_++] : getc_unlocked(stream_.get());
}

std::span<std::uint8_t const> SourceFile::content()
{
    if (content_.empty()) {
        struct stat status = {};
        double const most = kBytesPerTexel * max_texels_ + kMostBesideTexels;
        if (!status_of(fileno(stream_.get()), status) || static_cast<double>(status.st_size) > most) {
            throw Failure(Fault::kTooManyTexels, subject_,
                          fmt::format("its {:.0f} MiB are more than a picture of {:.0f} texels takes",
                                      static_cast<double>(status.st_size) / (1024 * 1024), max_texels_));
        }
        content_.resize(static_cast<std::size_t>(status.st_size));
        content_.resize(read_some(content_.data(), content_.size()));
    }
    return content_;
}

void SourceFile::check_size(double width, double height) const
{
    if (width < 1 || height < 1) {
        refuse_as_damaged();
    }
    if (width * height > max_texels_) {
        throw TooManyTexels(
            subject_,
            fmt::format("its size of {:.0f} x {:.0f} is more than {:.0f} texels", width, height, max_texels_),
            width, height);
    }
    if (width > kLongestSide || height > kLongestSide) {
        throw Failure(
            Fault::kSideTooLong, subject_,
            fmt::format("its size of {:.0f} x {:.0f} has a side above {:.0f}", width, height, kLongestSide));
    }
}

void SourceFile::check_length(double bytes) const
{
    struct stat status = {};
    if (status_of(fileno(stream_.get()), status) && S_ISREG(status.st_mode) &&
        static_cast<double>(status.st_size) < bytes) {
        refuse_as_damaged();
    }
}

void SourceFile::refuse(std::string const& what, std::string const& remedy) const
{
    throw Failure(Fault::kNotReadable, subject_, what, remedy);
}

void SourceFile::refuse_as_damaged() const
{
    throw Failure(Fault::kDamagedPicture, subject_, "it is damaged, or not an image of a known format");
}

} // namespace umbrixlib::toolkit
