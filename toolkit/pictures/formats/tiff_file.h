// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/source_file.h"

#include <cstdarg>
#include <optional>
#include <tiffio.h>

namespace umbrixlib::toolkit {

/// A TIFF file open in libtiff, which reads it from memory. What libtiff finds wrong is kept, and never told
/// on the terminal.
class TiffFile {
public:
    /// Refuses a file that libtiff cannot open.
    explicit TiffFile(SourceFile& source);
    ~TiffFile();
    TiffFile(TiffFile const&) = delete;
    TiffFile& operator=(TiffFile const&) = delete;

    TIFF* get() const { return tiff_; }

    /// The whole file.
    std::span<std::uint8_t const> content() const { return content_; }

    /// A tag of one number, or the number that it counts as when the file does not have it.
    template <typename Number>
    Number number(ttag_t tag, Number missing) const
    {
        Number value{};
        return TIFFGetField(tiff_, tag, &value) != 0 ? value : missing;
    }

    /// The same of the format's own defaults.
    std::uint16_t defaulted(ttag_t tag) const
    {
        std::uint16_t value = 0;
        TIFFGetFieldDefaulted(tiff_, tag, &value);
        return value;
    }

    /// Refuses the file as damaged if libtiff found anything wrong up to now, or @p good says so.
    void check(bool good) const;

private:
    static int keep_error(TIFF*, void* self, char const* module, char const* format, std::va_list arguments);
    static int keep_warning(TIFF*, void* self, char const* module, char const* format,
                            std::va_list arguments);

    static tmsize_t read(thandle_t self, void* to, tmsize_t size);
    static tmsize_t write(thandle_t self, void* from, tmsize_t size);
    static toff_t seek(thandle_t self, toff_t offset, int whence);
    static int close(thandle_t self);
    static toff_t size(thandle_t self);
    static int map(thandle_t self, void** base, toff_t* size);
    static void unmap(thandle_t self, void* base, toff_t size);

    SourceFile& source_;
    std::span<std::uint8_t const> content_;
    std::uint64_t at_ = 0;
    bool failed_ = false;
    bool has_mixed_depths_ = false;
    TIFFOpenOptions* options_;
    TIFF* tiff_;
};

} // namespace umbrixlib::toolkit
