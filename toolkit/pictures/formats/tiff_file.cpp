// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/tiff_file.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace umbrixlib::toolkit {

namespace {

constexpr tmsize_t kMostMemory = tmsize_t{1} << 31; ///< For one array of libtiff's own.

TiffFile& file_of(void* self)
{
    return *static_cast<TiffFile*>(self);
}

} // namespace

TiffFile::TiffFile(SourceFile& source)
    : source_(source), content_(source.content()), options_(TIFFOpenOptionsAlloc())
{
    TIFFOpenOptionsSetMaxSingleMemAlloc(options_, kMostMemory);
    TIFFOpenOptionsSetErrorHandlerExtR(options_, keep_error, this);
    TIFFOpenOptionsSetWarningHandlerExtR(options_, keep_warning, this);
    tiff_ = TIFFClientOpenExt("picture", "r", this, read, write, seek, close, size, map, unmap, options_);
    if (tiff_ == nullptr) {
        TIFFOpenOptionsFree(options_); // no destructor runs for an object whose making fails
        if (has_mixed_depths_) {
            source_.refuse("it is a TIFF picture with channels of different depths",
                           "save it with the same number of bits in each");
        }
        source_.refuse_as_damaged();
    }
}

TiffFile::~TiffFile()
{
    TIFFClose(tiff_);
    TIFFOpenOptionsFree(options_);
}

void TiffFile::check(bool good) const
{
    if (!good || failed_) {
        source_.refuse_as_damaged();
    }
}

int TiffFile::keep_error(TIFF*, void* self, char const*, char const* format, std::va_list arguments)
{
    std::array<char, 160> text{};
    std::vsnprintf(text.data(), text.size(), format, arguments);
    file_of(self).failed_ = true;
    if (std::strstr(text.data(), "different values per sample") != nullptr &&
        std::strstr(text.data(), "BitsPerSample") != nullptr) {
        file_of(self).has_mixed_depths_ = true;
    }
    return 1; // nobody else is to hear of it
}

int TiffFile::keep_warning(TIFF*, void* self, char const* module, char const*, std::va_list)
{
    // Data of JPEG that are damaged, or end early, are no more than a warning.
    if (module != nullptr && std::string_view(module) == "JPEGLib") {
        file_of(self).failed_ = true;
    }
    return 1;
}

tmsize_t TiffFile::read(thandle_t self, void* to, tmsize_t size)
{
    TiffFile& file = file_of(self);
    std::uint64_t const left = file.at_ < file.content_.size() ? file.content_.size() - file.at_ : 0;
    auto const count =
        static_cast<std::size_t>(std::min<std::uint64_t>(left, static_cast<std::uint64_t>(size)));
    if (count > 0) {
        std::memcpy(to, &file.content_[static_cast<std::size_t>(file.at_)], count);
    }
    file.at_ += count;
    return static_cast<tmsize_t>(count);
}

tmsize_t TiffFile::write(thandle_t, void*, tmsize_t)
{
    return 0;
}

toff_t TiffFile::seek(thandle_t self, toff_t offset, int whence)
{
    TiffFile& file = file_of(self);
    file.at_ = offset + (whence == SEEK_CUR ? file.at_ : whence == SEEK_END ? file.content_.size() : 0);
    return file.at_;
}

int TiffFile::close(thandle_t)
{
    return 0;
}

toff_t TiffFile::size(thandle_t self)
{
    return file_of(self).content_.size();
}

int TiffFile::map(thandle_t self, void** base, toff_t* size)
{
    // libtiff takes it without a const, and writes nothing to a file that is open for reading.
    *base = const_cast<std::uint8_t*>(file_of(self).content_.data());
    *size = file_of(self).content_.size();
    return 1;
}

void TiffFile::unmap(thandle_t, void*, toff_t) {}

} // namespace umbrixlib::toolkit
