// SPDX-License-Identifier: MIT
#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/formats/exif.h"
#include "toolkit/pictures/formats/orientation.h"

#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <utility>
#include <webp/decode.h>
#include <webp/demux.h>

namespace umbrixlib::toolkit {

namespace {

/// The first frame of a WebP file.
class WebpReader {
public:
    explicit WebpReader(SourceFile& source) : source_(source)
    {
        auto const content = source.content();
        WebPData const data{content.data(), content.size()};
        parts_.reset(WebPDemux(&data));
        if (!parts_ || WebPDemuxGetFrame(parts_.get(), 1, &frame_) == 0 || frame_.complete == 0) {
            source.refuse_as_damaged();
        }
    }
    ~WebpReader() { WebPDemuxReleaseIterator(&frame_); }
    WebpReader(WebpReader const&) = delete;
    WebpReader& operator=(WebpReader const&) = delete;

    DecodedFile decode()
    {
        std::uint32_t const width = WebPDemuxGetI(parts_.get(), WEBP_FF_CANVAS_WIDTH);
        std::uint32_t const height = WebPDemuxGetI(parts_.get(), WEBP_FF_CANVAS_HEIGHT);
        source_.check_size(width, height);
        DecodedFile file{
            on_canvas(decode_frame(), static_cast<int>(width), static_cast<int>(height)), false, "WebP", {}};
        int const orientation = orientation_of_exif();
        if (orientation != 1) {
            file.picture = oriented(std::move(file.picture), orientation);
            file.notes.emplace_back("turned upright, as its orientation tag says");
        }
        std::uint32_t const flags = WebPDemuxGetI(parts_.get(), WEBP_FF_FORMAT_FLAGS);
        if ((flags & ICCP_FLAG) != 0) {
            file.notes.emplace_back("its colour profile is left alone: values count as they are");
        }
        if (frame_.num_frames > 1) {
            file.notes.emplace_back("it has several pictures, of which this is the first");
        }
        return file;
    }

private:
    struct Delete {
        void operator()(WebPDemuxer* parts) const { WebPDemuxDelete(parts); }
    };

    Picture decode_frame() const
    {
        WebPDecoderConfig config;
        bool const ready = WebPInitDecoderConfig(&config) != 0;
        auto const* const bytes = frame_.fragment.bytes;
        std::size_t const size = frame_.fragment.size;
        if (!ready || WebPGetFeatures(bytes, size, &config.input) != VP8_STATUS_OK ||
            config.input.width != frame_.width || config.input.height != frame_.height) {
            source_.refuse_as_damaged();
        }
        source_.check_size(frame_.width, frame_.height);
        Picture picture = make_picture(frame_.width, frame_.height, frame_.has_alpha != 0 ? 4 : 3);
        config.options.flip = 1; // the bottom row first
        config.output.colorspace = frame_.has_alpha != 0 ? MODE_RGBA : MODE_RGB;
        config.output.is_external_memory = 1;
        config.output.u.RGBA.rgba = picture.bytes.data();
        config.output.u.RGBA.stride = picture.width * picture.channels;
        config.output.u.RGBA.size = picture.bytes.size();
        VP8StatusCode const status = WebPDecode(bytes, size, &config);
        WebPFreeDecBuffer(&config.output);
        if (status == VP8_STATUS_OUT_OF_MEMORY) {
            throw std::bad_alloc();
        }
        if (status != VP8_STATUS_OK) {
            source_.refuse_as_damaged();
        }
        return picture;
    }

    /// A frame may be a part of the canvas; around it all is transparent.
    Picture on_canvas(Picture&& frame, int width, int height) const
    {
        if (frame.width == width && frame.height == height) {
            return std::move(frame);
        }
        if (frame_.x_offset < 0 || frame_.y_offset < 0 || frame.width > width - frame_.x_offset ||
            frame.height > height - frame_.y_offset) {
            source_.refuse_as_damaged();
        }
        Picture const colours = in_colour(frame, true);
        Picture canvas = make_picture(width, height, 4);
        auto const row = static_cast<std::size_t>(frame.width);
        auto const bottom = static_cast<std::size_t>(height - frame_.y_offset - frame.height);
        for (std::size_t y = 0; y < static_cast<std::size_t>(frame.height); ++y) {
            std::size_t const to =
                (bottom + y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(frame_.x_offset);
            std::memcpy(canvas.texel(to), colours.texel(y * row), 4 * row);
        }
        return canvas;
    }

    int orientation_of_exif() const
    {
        WebPChunkIterator chunk{};
        int orientation = 1;
        if (WebPDemuxGetChunk(parts_.get(), "EXIF", 1, &chunk) != 0) {
            std::span<std::uint8_t const> exif(chunk.chunk.bytes, chunk.chunk.size);
            using namespace std::string_view_literals;
            if (std::string_view(reinterpret_cast<char const*>(exif.data()), exif.size())
                    .starts_with("Exif\0\0"sv)) {
                exif = exif.subspan(6); // as in JPEG, which the format does not ask for
            }
            orientation = exif_orientation(exif);
        }
        WebPDemuxReleaseChunkIterator(&chunk);
        return orientation;
    }

    SourceFile& source_;
    std::unique_ptr<WebPDemuxer, Delete> parts_;
    WebPIterator frame_{};
};

class WebpDecoder : public Decoder {
public:
    bool takes(SourceFile const& source) const override
    {
        return source.begins_with("RIFF") && source.begins_with("WEBP", 8);
    }

    DecodedFile decode(SourceFile& source) const override { return WebpReader(source).decode(); }
};

} // namespace

Decoder const& webp_decoder()
{
    static WebpDecoder const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
