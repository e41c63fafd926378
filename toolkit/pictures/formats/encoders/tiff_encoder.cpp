// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encoder.h"
#include "toolkit/pictures/formats/seekable_output.h"

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <tiffio.h>

namespace umbrixlib::toolkit {

namespace {

constexpr std::size_t kStrip = 256 * 1024; ///< Bytes of a strip before it is packed.
constexpr std::size_t kMostOfClassic =
    3'900'000'000; ///< Above it offsets need 64 bits, and the file is a BigTIFF.

/// libtiff at work on one file.
class TiffWriter {
public:
    TiffWriter(SeekableOutput& output, Picture const& picture)
        : picture_(picture), options_(TIFFOpenOptionsAlloc())
    {
        TIFFOpenOptionsSetErrorHandlerExtR(options_, say_nothing, nullptr);
        TIFFOpenOptionsSetWarningHandlerExtR(options_, say_nothing, nullptr);
        char const* const mode = picture.bytes.size() > kMostOfClassic ? "w8" : "w";
        tiff_ =
            TIFFClientOpenExt("picture", mode, &output, read, write, seek, close, size, map, unmap, options_);
    }
    ~TiffWriter()
    {
        finish();
        TIFFOpenOptionsFree(options_);
    }
    TiffWriter(TiffWriter const&) = delete;
    TiffWriter& operator=(TiffWriter const&) = delete;

    bool write() { return tiff_ != nullptr && write_tags() && write_strips() && finish(); }

private:
    bool write_tags()
    {
        bool const colour = picture_.channels >= 3;
        bool const floats = picture_.type == SampleType::kHalf || picture_.type == SampleType::kFloat;
        bool good = set(TIFFTAG_IMAGEWIDTH, picture_.width) && set(TIFFTAG_IMAGELENGTH, picture_.height) &&
                    set(TIFFTAG_BITSPERSAMPLE, 8 * static_cast<int>(sample_size(picture_.type))) &&
                    set(TIFFTAG_SAMPLESPERPIXEL, picture_.channels) &&
                    set(TIFFTAG_SAMPLEFORMAT, floats ? SAMPLEFORMAT_IEEEFP : SAMPLEFORMAT_UINT) &&
                    set(TIFFTAG_PHOTOMETRIC, colour ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK) &&
                    set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
                    set(TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) &&
                    set(TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE) &&
                    set(TIFFTAG_PREDICTOR, floats ? PREDICTOR_FLOATINGPOINT : PREDICTOR_HORIZONTAL) &&
                    set(TIFFTAG_ROWSPERSTRIP, static_cast<int>(rows_of_strip()));
        if (good && picture_.has_alpha()) {
            std::uint16_t const straight = EXTRASAMPLE_UNASSALPHA;
            good = TIFFSetField(tiff_, TIFFTAG_EXTRASAMPLES, 1, &straight) != 0;
        }
        if (good && !picture_.attributes.empty()) {
            good = TIFFSetField(tiff_, TIFFTAG_IMAGEDESCRIPTION,
                                attribute_text(picture_.attributes).c_str()) != 0;
        }
        return good;
    }

    bool set(ttag_t tag, int value) { return TIFFSetField(tiff_, tag, value) != 0; }

    std::size_t row_bytes() const
    {
        return picture_.bytes.size() / static_cast<std::size_t>(picture_.height);
    }

    std::size_t rows_of_strip() const
    {
        return std::clamp<std::size_t>(kStrip / row_bytes(), 1, static_cast<std::size_t>(picture_.height));
    }

    /// The top row first, which is the last one of the picture.
    bool write_strips()
    {
        std::size_t const row = row_bytes();
        auto const height = static_cast<std::size_t>(picture_.height);
        std::vector<std::uint8_t> strip(rows_of_strip() * row);
        std::uint32_t number = 0;
        for (std::size_t top = 0; top < height; top += rows_of_strip()) {
            std::size_t const rows = std::min(rows_of_strip(), height - top);
            for (std::size_t y = 0; y < rows; ++y) {
                std::memcpy(&strip[y * row], &picture_.bytes[(height - 1 - top - y) * row], row);
            }
            auto const bytes = static_cast<tmsize_t>(rows * row);
            if (TIFFWriteEncodedStrip(tiff_, number++, strip.data(), bytes) != bytes) {
                return false;
            }
        }
        return true;
    }

    /// Writes the tags, which follow the strips.
    bool finish()
    {
        bool const good = tiff_ != nullptr && TIFFWriteDirectory(tiff_) != 0;
        if (tiff_ != nullptr) {
            TIFFCleanup(tiff_);
            tiff_ = nullptr;
        }
        return good;
    }

    static int say_nothing(TIFF*, void*, char const*, char const*, std::va_list) { return 1; }

    static SeekableOutput& output_of(thandle_t output) { return *static_cast<SeekableOutput*>(output); }

    static tmsize_t read(thandle_t output, void* to, tmsize_t size)
    {
        return static_cast<tmsize_t>(output_of(output).read(to, static_cast<std::size_t>(size)));
    }
    static tmsize_t write(thandle_t output, void* from, tmsize_t size)
    {
        return output_of(output).write(from, static_cast<std::size_t>(size)) ? size : 0;
    }
    static toff_t seek(thandle_t output, toff_t offset, int whence)
    {
        SeekableOutput& file = output_of(output);
        file.go_to(offset + (whence == SEEK_CUR ? file.place() : whence == SEEK_END ? file.size() : 0));
        return file.place();
    }
    static int close(thandle_t) { return 0; }
    static toff_t size(thandle_t output) { return output_of(output).size(); }
    static int map(thandle_t, void**, toff_t*) { return 0; }
    static void unmap(thandle_t, void*, toff_t) {}

    Picture const& picture_;
    TIFFOpenOptions* options_;
    TIFF* tiff_;
};

/// Pictures of each type as they are: Deflate with a predictor, and an alpha that did not multiply the
/// colours. There is no date in it.
class TiffEncoder : public Encoder {
public:
    bool encode(std::filesystem::path const& file, Picture const& picture) const override
    {
        SeekableOutput output(file);
        bool const written = TiffWriter(output, picture).write();
        return output.close() && written;
    }
};

} // namespace

Encoder const& tiff_encoder()
{
    static TiffEncoder const encoder;
    return encoder;
}

} // namespace umbrixlib::toolkit
