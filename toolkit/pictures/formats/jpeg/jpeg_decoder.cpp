// SPDX-License-Identifier: MIT
#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/formats/colour_models.h"
#include "toolkit/pictures/formats/exif.h"
#include "toolkit/pictures/formats/orientation.h"

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <fmt/format.h>
#include <jpeglib.h>
#include <new>
#include <string_view>

#include <jerror.h> // after jpeglib.h: its numbers depend on what that defines

namespace umbrixlib::toolkit {

namespace {

constexpr double kMostTexelsPerByte = 1024.0; ///< A block of 8 x 8 texels takes a bit at least.
constexpr int kMostScans = 500;
constexpr int kLossless = 3;  ///< The frame's marker, 0xc0 and this.
constexpr int kJpegLs = 0xf7; ///< The marker of a frame of JPEG-LS.

/// Whether a warning says that texels are wrong. Others are of stray bytes and unknown markers.
bool is_damage(int warning)
{
    switch (warning) {
    case JWRN_ARITH_BAD_CODE:
    case JWRN_BOGUS_PROGRESSION:
    case JWRN_HIT_MARKER:
    case JWRN_HUFF_BAD_CODE:
    case JWRN_JPEG_EOF:
    case JWRN_MUST_RESYNC:
        return true;
    default:
        return false;
    }
}

/// libjpeg at work on one file. It reports a failure by a long jump, which passes no object that has to be
/// released: the functions that it leaves hold none.
class JpegReader {
public:
    explicit JpegReader(SourceFile& source) : source_(source), content_(source.content())
    {
        jpeg_.err = jpeg_std_error(&errors_);
        errors_.error_exit = fail;
        errors_.emit_message = note_warning;
        errors_.output_message = say_nothing;
        jpeg_.client_data = this;
        check(start());
    }
    ~JpegReader() { jpeg_destroy_decompress(&jpeg_); }
    JpegReader(JpegReader const&) = delete;
    JpegReader& operator=(JpegReader const&) = delete;

    DecodedFile decode()
    {
        check(read_header());
        read_tags();
        source_.check_size(jpeg_.image_width, jpeg_.image_height);
        source_.check_length(static_cast<double>(jpeg_.image_width) * jpeg_.image_height /
                             kMostTexelsPerByte);
        choose_colours();
        Picture picture = make_picture(static_cast<int>(jpeg_.image_width),
                                       static_cast<int>(jpeg_.image_height), jpeg_.num_components);
        check(read_rows(picture.bytes.data(), picture.bytes.size() / jpeg_.image_height));
        DecodedFile file{std::move(picture), false, "JPEG", {}};
        if (jpeg_.out_color_space == JCS_CMYK) {
            if (jpeg_.saw_Adobe_marker) { // whose 0 is full ink
                std::transform(file.picture.bytes.begin(), file.picture.bytes.end(),
                               file.picture.bytes.begin(),
                               [](std::uint8_t ink) { return static_cast<std::uint8_t>(255 - ink); });
            }
            file.picture = from_inks(file.picture);
            file.notes.emplace_back("its CMYK inks became RGB without their colour profile");
        }
        if (orientation_ != 1) {
            file.picture = oriented(std::move(file.picture), orientation_);
            file.notes.emplace_back("turned upright, as its orientation tag says");
        }
        if (has_profile_) {
            file.notes.emplace_back("its colour profile is left alone: values count as they are");
        }
        return file;
    }

private:
    void check(bool good) const
    {
        if (good && !damaged_) {
            return;
        }
        if (!good) {
            refuse_by_name();
        }
        source_.refuse_as_damaged();
    }

    /// For what libjpeg does not read, but which is sound.
    void refuse_by_name() const
    {
        switch (errors_.msg_code) {
        case JERR_OUT_OF_MEMORY:
            throw std::bad_alloc();
        case JERR_BAD_PRECISION:
            source_.refuse(fmt::format("it is a JPEG picture of {} bits", errors_.msg_parm.i[0]),
                           "save it with 8 bits, or as PNG");
        case JERR_SOF_UNSUPPORTED:
            source_.refuse(errors_.msg_parm.i[0] == 0xc0 + kLossless ? "it is a lossless JPEG picture"
                                                                     : "it is a JPEG picture of a rare kind",
                           "save it as PNG, or as baseline JPEG");
        case JERR_UNKNOWN_MARKER:
            if (errors_.msg_parm.i[0] == kJpegLs) {
                source_.refuse("it is a JPEG-LS picture", "save it as PNG, or as baseline JPEG");
            }
            break;
        default:
            break;
        }
    }

    bool start()
    {
        if (setjmp(jump_) != 0) {
            return false;
        }
        jpeg_create_decompress(&jpeg_);
        return true;
    }

    bool read_header()
    {
        if (setjmp(jump_) != 0) {
            return false;
        }
        jpeg_mem_src(&jpeg_, content_.data(), content_.size());
        jpeg_save_markers(&jpeg_, JPEG_APP0 + 1, 0xffff); // EXIF
        jpeg_save_markers(&jpeg_, JPEG_APP0 + 2, 0xffff); // a colour profile
        jpeg_read_header(&jpeg_, TRUE);
        return true;
    }

    void choose_colours()
    {
        switch (jpeg_.jpeg_color_space) {
        case JCS_GRAYSCALE:
            break;
        case JCS_RGB:
        case JCS_YCbCr:
            jpeg_.out_color_space = JCS_RGB;
            break;
        case JCS_CMYK:
        case JCS_YCCK:
            jpeg_.out_color_space = JCS_CMYK;
            break;
        default:
            source_.refuse(fmt::format("it is a JPEG picture of {} channels", jpeg_.num_components),
                           "save it as grey or RGB");
        }
    }

    /// The first row of the file is the last one of the picture.
    bool read_rows(std::uint8_t* picture, std::size_t row)
    {
        if (setjmp(jump_) != 0) {
            return false;
        }
        progress_.progress_monitor = watch_scans;
        jpeg_.progress = &progress_;
        jpeg_start_decompress(&jpeg_);
        while (jpeg_.output_scanline < jpeg_.output_height) {
            JSAMPROW to = picture + (jpeg_.output_height - 1 - jpeg_.output_scanline) * row;
            jpeg_read_scanlines(&jpeg_, &to, 1);
        }
        jpeg_finish_decompress(&jpeg_);
        return true;
    }

    /// libjpeg keeps them until the rows are read.
    void read_tags()
    {
        for (jpeg_saved_marker_ptr marker = jpeg_.marker_list; marker != nullptr; marker = marker->next) {
            using namespace std::string_view_literals;
            std::string_view const text(reinterpret_cast<char const*>(marker->data), marker->data_length);
            if (marker->marker == JPEG_APP0 + 1 && text.starts_with("Exif\0\0"sv)) {
                orientation_ = exif_orientation({marker->data + 6, marker->data_length - 6});
            }
            if (marker->marker == JPEG_APP0 + 2 && text.starts_with("ICC_PROFILE\0"sv)) {
                has_profile_ = true;
            }
        }
    }

    static JpegReader& reader_of(j_common_ptr jpeg) { return *static_cast<JpegReader*>(jpeg->client_data); }

    [[noreturn]] static void fail(j_common_ptr jpeg) { std::longjmp(reader_of(jpeg).jump_, 1); }

    static void note_warning(j_common_ptr jpeg, int level)
    {
        if (level < 0 && is_damage(jpeg->err->msg_code)) {
            reader_of(jpeg).damaged_ = true;
        }
    }

    static void say_nothing(j_common_ptr) {}

    /// Files of very many scans take very long.
    static void watch_scans(j_common_ptr jpeg)
    {
        if (reader_of(jpeg).jpeg_.input_scan_number > kMostScans) {
            jpeg->err->msg_code = JERR_BAD_PROGRESSION;
            fail(jpeg);
        }
    }

    SourceFile& source_;
    std::span<std::uint8_t const> content_;
    jpeg_decompress_struct jpeg_{};
    jpeg_error_mgr errors_{};
    jpeg_progress_mgr progress_{};
    std::jmp_buf jump_{};
    bool damaged_ = false;
    bool has_profile_ = false;
    int orientation_ = 1;
};

class JpegDecoder : public Decoder {
public:
    bool takes(SourceFile const& source) const override { return source.begins_with("\xff\xd8\xff"); }

    DecodedFile decode(SourceFile& source) const override { return JpegReader(source).decode(); }
};

} // namespace

Decoder const& jpeg_decoder()
{
    static JpegDecoder const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
