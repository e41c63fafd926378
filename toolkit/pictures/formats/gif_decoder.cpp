// SPDX-License-Identifier: MIT
#include "toolkit/pictures/decoder.h"

#include <algorithm>
#include <gif_lib.h>

namespace umbrixlib::toolkit {

namespace {

constexpr double kMostTexelsPerByte = 4096.0; ///< A code of 12 bits stands for at most this many.

/// The first frame of a GIF file, in the colours of its palette: also where it is transparent.
class GifReader {
public:
    explicit GifReader(SourceFile& source) : source_(source)
    {
        int error = 0;
        gif_ = DGifOpen(&source, get_bytes, &error);
        if (gif_ == nullptr) {
            source.refuse_as_damaged();
        }
    }
    ~GifReader() { DGifCloseFile(gif_, nullptr); }
    GifReader(GifReader const&) = delete;
    GifReader& operator=(GifReader const&) = delete;

    DecodedFile decode()
    {
        check(go_to_frame());
        check(DGifGetImageDesc(gif_) == GIF_OK);
        GifImageDesc const frame = gif_->Image;
        check(frame.Left >= 0 && frame.Top >= 0 && frame.Width > 0 && frame.Height > 0);
        // Some files have frames that go beyond the canvas.
        int const width = std::max(gif_->SWidth, frame.Left + frame.Width);
        int const height = std::max(gif_->SHeight, frame.Top + frame.Height);
        source_.check_size(width, height);
        source_.check_length(static_cast<double>(frame.Width) * frame.Height / kMostTexelsPerByte);
        ColorMapObject const* const palette = frame.ColorMap != nullptr ? frame.ColorMap : gif_->SColorMap;
        check(palette != nullptr);
        DecodedFile file{make_picture(width, height, 3), true, "GIF", {}};
        if (frame.Width < width || frame.Height < height) {
            fill_with_background(file.picture);
        }
        read_frame(frame, *palette, file.picture);
        if (go_to_frame()) {
            file.notes.emplace_back("it has several pictures, of which this is the first");
        }
        return file;
    }

private:
    void check(bool good) const
    {
        if (!good) {
            source_.refuse_as_damaged();
        }
    }

    /// False if there is no other one.
    bool go_to_frame()
    {
        for (;;) {
            GifRecordType type = UNDEFINED_RECORD_TYPE;
            if (DGifGetRecordType(gif_, &type) != GIF_OK || type == TERMINATE_RECORD_TYPE) {
                return false;
            }
            if (type == IMAGE_DESC_RECORD_TYPE) {
                return true;
            }
            int code = 0;
            GifByteType* block = nullptr;
            if (type != EXTENSION_RECORD_TYPE || DGifGetExtension(gif_, &code, &block) != GIF_OK) {
                return false;
            }
            while (block != nullptr) {
                if (DGifGetExtensionNext(gif_, &block) != GIF_OK) {
                    return false;
                }
            }
        }
    }

    /// Black, for a number that the palette does not have.
    static void set_colour(std::uint8_t* texel, ColorMapObject const& palette, int number)
    {
        if (number < palette.ColorCount) {
            GifColorType const& colour = palette.Colors[number];
            texel[0] = colour.Red;
            texel[1] = colour.Green;
            texel[2] = colour.Blue;
        }
    }

    void fill_with_background(Picture& picture) const
    {
        for (std::size_t i = 0; gif_->SColorMap != nullptr && i < picture.texels(); ++i) {
            set_colour(picture.texel(i), *gif_->SColorMap, gif_->SBackGroundColor);
        }
    }

    void read_frame(GifImageDesc const& frame, ColorMapObject const& palette, Picture& picture)
    {
        struct Pass {
            int first;
            int step;
        };
        constexpr Pass kPasses[] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
        constexpr Pass kOnePass[] = {{0, 1}};
        std::vector<GifByteType> row(static_cast<std::size_t>(frame.Width));
        std::span<Pass const> const passes =
            frame.Interlace ? std::span<Pass const>(kPasses) : std::span<Pass const>(kOnePass);
        for (Pass const pass : passes) {
            for (int y = pass.first; y < frame.Height; y += pass.step) {
                check(DGifGetLine(gif_, row.data(), frame.Width) == GIF_OK);
                auto const from_bottom = static_cast<std::size_t>(picture.height - 1 - frame.Top - y);
                std::size_t const at = from_bottom * static_cast<std::size_t>(picture.width) +
                                       static_cast<std::size_t>(frame.Left);
                for (std::size_t x = 0; x < row.size(); ++x) {
                    std::uint8_t* const texel = picture.texel(at + x);
                    std::fill_n(texel, 3, std::uint8_t{0});
                    set_colour(texel, palette, row[x]);
                }
            }
        }
    }

    static int get_bytes(GifFileType* gif, GifByteType* to, int size)
    {
        auto* const source = static_cast<SourceFile*>(gif->UserData);
        return static_cast<int>(source->read_some(to, static_cast<std::size_t>(size)));
    }

    SourceFile& source_;
    GifFileType* gif_;
};

class GifDecoder : public Decoder {
public:
    bool takes(SourceFile const& source) const override
    {
        return source.begins_with("GIF87a") || source.begins_with("GIF89a");
    }

    DecodedFile decode(SourceFile& source) const override { return GifReader(source).decode(); }
};

} // namespace

Decoder const& gif_decoder()
{
    static GifDecoder const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
