// SPDX-License-Identifier: MIT
#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/formats/png/png_texels.h"

#include <bit>
#include <cstdlib>
#include <cstring>
#include <new>
#include <optional>
#include <png.h>

namespace umbrixlib::toolkit {

namespace {

constexpr double kMostPacking = 1040.0; ///< No compressed data holds more than this times its length.
constexpr png_uint_32 kMostSide = 0x7fffffff;

/// libpng at work on one file. It reports a failure by a long jump, which passes no object that has to be
/// released: the functions that it leaves hold none.
class PngReader {
public:
    explicit PngReader(SourceFile& source) : source_(source)
    {
        png_ = png_create_read_struct_2(PNG_LIBPNG_VER_STRING, this, fail, warn, this, get_memory, release);
        info_ = png_ == nullptr ? nullptr : png_create_info_struct(png_);
        if (info_ == nullptr) {
            png_destroy_read_struct(&png_, nullptr, nullptr);
            throw std::bad_alloc();
        }
    }
    ~PngReader() { png_destroy_read_struct(&png_, &info_, nullptr); }
    PngReader(PngReader const&) = delete;
    PngReader& operator=(PngReader const&) = delete;

    /// @param by_libpng If not, and there is a faster way to read the texels, they are read in that way.
    ///                  Nothing if it does not come to an end.
    std::optional<DecodedFile> decode(bool by_libpng)
    {
        check(read_header());
        double const width = png_get_image_width(png_, info_);
        double const height = png_get_image_height(png_, info_);
        source_.check_size(width, height);
        bool const palette = png_get_color_type(png_, info_) == PNG_COLOR_TYPE_PALETTE;
        bool const fast = !by_libpng && !palette && holds_whole_samples();
        double const packed_row = static_cast<double>(png_get_rowbytes(png_, info_));
        check(choose_form(palette));
        source_.check_length(height * packed_row / kMostPacking);
        Picture picture =
            make_picture(static_cast<int>(width), static_cast<int>(height), png_get_channels(png_, info_),
                         png_get_bit_depth(png_, info_) == 16 ? SampleType::kUint16 : SampleType::kUint8);
        if (!fast) {
            read_by_libpng(picture);
        } else if (!read_png_texels(source_, png_get_uint_32(last_eight_), picture)) {
            return {};
        }
        picture.attributes = parse_attributes({text_, text_size_});
        DecodedFile file{std::move(picture), palette, "PNG"};
        if (has_profile_) {
            file.notes.emplace_back("its colour profile is left alone: values count as they are");
        }
        return file;
    }

private:
    void check(bool good) const
    {
        if (out_of_memory_) {
            throw std::bad_alloc();
        }
        if (!good) {
            source_.refuse_as_damaged();
        }
    }

    bool read_header()
    {
        if (setjmp(png_jmpbuf(png_)) != 0) {
            return false;
        }
        png_set_read_fn(png_, this, get_bytes);
        png_set_user_limits(png_, kMostSide, kMostSide); // the size is looked at by those who know the limit
        // Only what makes the picture, and our own text: no other text, profile or time can be at fault.
        png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
        constexpr png_byte kLookedAt[] = "iTXt\0iCCP";
        png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_ALWAYS, kLookedAt, 2);
        png_set_read_user_chunk_fn(png_, this, take_chunk);
        png_read_info(png_, info_);
        return true;
    }

    /// Greys of 8 bits at least, and colours. Whatever else marks texels as transparent becomes an alpha,
    /// but for the alpha of a palette: its colours count as they are.
    bool choose_form(bool palette)
    {
        if (setjmp(png_jmpbuf(png_)) != 0) {
            return false;
        }
        png_set_expand(png_);
        if (palette) {
            png_set_strip_alpha(png_);
        }
        if constexpr (std::endian::native == std::endian::little) {
            png_set_swap(png_);
        }
        png_set_interlace_handling(png_);
        png_read_update_info(png_, info_);
        return true;
    }

    /// Whether the texels follow row by row, in samples that are as the picture has them. libpng has read the
    /// head of the first chunk of them.
    bool holds_whole_samples() const
    {
        return png_get_bit_depth(png_, info_) >= 8 && png_get_valid(png_, info_, PNG_INFO_tRNS) == 0 &&
               png_get_interlace_type(png_, info_) == PNG_INTERLACE_NONE &&
               std::memcmp(last_eight_ + 4, "IDAT", 4) == 0;
    }

    void read_by_libpng(Picture& picture)
    {
        std::vector<png_bytep> rows(static_cast<std::size_t>(picture.height));
        std::size_t const row_size = picture.bytes.size() / rows.size();
        for (std::size_t i = 0; i < rows.size(); ++i) {
            rows[rows.size() - 1 - i] = &picture.bytes[i * row_size];
        }
        check(read_rows(rows.data()));
    }

    bool read_rows(png_bytepp rows)
    {
        if (setjmp(png_jmpbuf(png_)) != 0) {
            return false;
        }
        png_read_image(png_, rows);
        return true;
    }

    static void get_bytes(png_structp png, png_bytep to, std::size_t size)
    {
        auto* const self = static_cast<PngReader*>(png_get_io_ptr(png));
        if (self->source_.read_some(to, size) != size) {
            png_error(png, "too short");
        }
        if (size == sizeof self->last_eight_) {
            std::memcpy(self->last_eight_, to, size);
        }
    }

    /// Keeps our text, if the chunk holds it, and that there is a colour profile. No chunk is written back,
    /// so that all of them are done with.
    static int take_chunk(png_structp png, png_unknown_chunkp chunk)
    {
        constexpr char kBefore[] = "Umbrix\0\0\0\0"; // not packed, in no language, and the zero behind it
        auto* const self = static_cast<PngReader*>(png_get_user_chunk_ptr(png));
        if (std::memcmp(chunk->name, "iCCP", 4) == 0) {
            self->has_profile_ = true;
        } else if (chunk->size >= sizeof kBefore && chunk->size <= sizeof kBefore + kMostAttributeText &&
                   std::memcmp(chunk->data, kBefore, sizeof kBefore) == 0) {
            self->text_size_ = chunk->size - sizeof kBefore;
            std::memcpy(self->text_, chunk->data + sizeof kBefore, self->text_size_);
        }
        return 1;
    }

    [[noreturn]] static void fail(png_structp png, png_const_charp) { png_longjmp(png, 1); }
    static void warn(png_structp, png_const_charp) {}

    static png_voidp get_memory(png_structp png, png_alloc_size_t size)
    {
        void* const memory = std::calloc(1, size);
        if (memory == nullptr) {
            static_cast<PngReader*>(png_get_mem_ptr(png))->out_of_memory_ = true;
        }
        return memory;
    }
    static void release(png_structp, png_voidp memory) { std::free(memory); }

    SourceFile& source_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    png_byte last_eight_[8] = {}; ///< Bytes that were read at once: in the end, a chunk's length and name.
    bool out_of_memory_ = false;
    bool has_profile_ = false;
    char text_[kMostAttributeText] = {};
    std::size_t text_size_ = 0;
};

class PngDecoder : public Decoder {
public:
    bool takes(SourceFile const& source) const override
    {
        return source.head().size() >= 8 && png_sig_cmp(source.head().data(), 0, 8) == 0;
    }

    DecodedFile decode(SourceFile& source) const override
    {
        if (auto file = PngReader(source).decode(false)) {
            return std::move(*file);
        }
        source.rewind(); // what is odd in the file, libpng tells
        return *PngReader(source).decode(true);
    }
};

} // namespace

Decoder const& png_decoder()
{
    static PngDecoder const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
