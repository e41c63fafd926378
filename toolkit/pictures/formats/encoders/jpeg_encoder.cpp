// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encoder.h"
#include "toolkit/pictures/formats/encoders/output_stream.h"

#include <array>
#include <csetjmp>
#include <cstdio>
#include <jpeglib.h>

namespace umbrixlib::toolkit {

namespace {

constexpr int kQuality = 99;

/// libjpeg at work on one picture of 8 bits. It reports a failure by a long jump, which passes no object that
/// has to be released: the function that it leaves holds none.
class JpegWriter {
public:
    explicit JpegWriter(OutputStream& stream) : stream_(stream)
    {
        jpeg_.err = jpeg_std_error(&errors_);
        errors_.error_exit = fail;
        errors_.output_message = say_nothing;
        jpeg_.client_data = this;
        output_.init_destination = start;
        output_.empty_output_buffer = put_all;
        output_.term_destination = put_rest;
    }
    ~JpegWriter() { jpeg_destroy_compress(&jpeg_); }
    JpegWriter(JpegWriter const&) = delete;
    JpegWriter& operator=(JpegWriter const&) = delete;

    bool write(Picture const& picture)
    {
        return write(picture.bytes.data(), picture.width, picture.height, picture.channels);
    }

private:
    bool write(std::uint8_t const* texels, int width, int height, int channels)
    {
        if (setjmp(jump_) != 0) {
            return false;
        }
        jpeg_create_compress(&jpeg_);
        jpeg_.dest = &output_;
        jpeg_.image_width = static_cast<JDIMENSION>(width);
        jpeg_.image_height = static_cast<JDIMENSION>(height);
        jpeg_.input_components = channels;
        jpeg_.in_color_space = channels == 1 ? JCS_GRAYSCALE : JCS_RGB;
        jpeg_set_defaults(&jpeg_);
        jpeg_set_quality(&jpeg_, kQuality, TRUE);
        jpeg_start_compress(&jpeg_, TRUE);
        std::size_t const row = static_cast<std::size_t>(width) * static_cast<std::size_t>(channels);
        while (jpeg_.next_scanline < jpeg_.image_height) { // the last row of the picture is the top one
            std::size_t const from = (jpeg_.image_height - 1 - jpeg_.next_scanline) * row;
            JSAMPROW scanline = const_cast<JSAMPROW>(texels + from);
            jpeg_write_scanlines(&jpeg_, &scanline, 1);
        }
        jpeg_finish_compress(&jpeg_);
        return true;
    }

    [[noreturn]] static void fail(j_common_ptr jpeg)
    {
        std::longjmp(static_cast<JpegWriter*>(jpeg->client_data)->jump_, 1);
    }
    static void say_nothing(j_common_ptr) {}

    static JpegWriter& writer_of(j_compress_ptr jpeg) { return *static_cast<JpegWriter*>(jpeg->client_data); }

    static void start(j_compress_ptr jpeg)
    {
        JpegWriter& self = writer_of(jpeg);
        self.output_.next_output_byte = self.buffer_.data();
        self.output_.free_in_buffer = self.buffer_.size();
    }

    void put(j_compress_ptr jpeg, std::size_t size)
    {
        if (!stream_.write({buffer_.data(), size})) {
            fail(reinterpret_cast<j_common_ptr>(jpeg));
        }
    }

    static boolean put_all(j_compress_ptr jpeg)
    {
        JpegWriter& self = writer_of(jpeg);
        self.put(jpeg, self.buffer_.size());
        start(jpeg);
        return TRUE;
    }

    static void put_rest(j_compress_ptr jpeg)
    {
        JpegWriter& self = writer_of(jpeg);
        self.put(jpeg, self.buffer_.size() - self.output_.free_in_buffer);
    }

    OutputStream& stream_;
    jpeg_compress_struct jpeg_{};
    jpeg_error_mgr errors_{};
    std::jmp_buf jump_{};
    jpeg_destination_mgr output_{};
    std::array<JOCTET, 65536> buffer_;
};

/// In 8 bits, without alpha.
Picture in_bytes(Picture const& picture)
{
    Picture const colours = picture.has_alpha() ? without_alpha(picture) : picture;
    Picture bytes = make_picture(colours.width, colours.height, colours.channels);
    bytes.kind = colours.kind;
    with_samples(colours, [&](auto samples) {
        for (std::size_t i = 0; i < samples.size(); ++i) {
            bytes.bytes[i] = to_byte(samples[i]);
        }
    });
    return bytes;
}

/// Baseline, of high quality. Grey stays grey; an alpha is left out.
class JpegEncoder : public Encoder {
public:
    bool encode(std::filesystem::path const& file, Picture const& picture) const override
    {
        bool const fits = picture.type == SampleType::kUint8 && !picture.has_alpha();
        Picture const made = fits ? Picture() : in_bytes(picture);
        OutputStream stream(file);
        bool const written = JpegWriter(stream).write(fits ? picture : made);
        return stream.close() && written;
    }
};

} // namespace

Encoder const& jpeg_encoder()
{
    static JpegEncoder const encoder;
    return encoder;
}

} // namespace umbrixlib::toolkit
