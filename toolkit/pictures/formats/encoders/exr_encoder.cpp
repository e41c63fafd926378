// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encoder.h"
#include "toolkit/pictures/formats/seekable_output.h"

#include <OpenEXR/openexr.h>
#include <algorithm>
#include <cstring>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

/// OpenEXRCore at work on one file.
class ExrWriter {
public:
    ExrWriter(SeekableOutput& output, Picture const& picture) : picture_(picture)
    {
        exr_context_initializer_t start = EXR_DEFAULT_CONTEXT_INITIALIZER;
        start.error_handler_fn = say_nothing;
        start.user_data = &output;
        start.write_fn = write;
        good_ = exr_start_write(&file_, "picture", EXR_WRITE_FILE_DIRECTLY, &start) == EXR_ERR_SUCCESS;
    }
    ~ExrWriter()
    {
        if (file_ != nullptr) {
            exr_encoding_destroy(file_, &steps_);
            exr_finish(&file_);
        }
    }
    ExrWriter(ExrWriter const&) = delete;
    ExrWriter& operator=(ExrWriter const&) = delete;

    bool write()
    {
        write_header();
        write_chunks();
        if (good_) {
            note(exr_encoding_destroy(file_, &steps_));
            note(exr_finish(&file_)); // which writes where the chunks are
        }
        return good_;
    }

private:
    void note(exr_result_t result) { good_ = good_ && result == EXR_ERR_SUCCESS; }

    void write_header()
    {
        if (!good_) {
            return;
        }
        int part = 0;
        note(exr_add_part(file_, nullptr, EXR_STORAGE_SCANLINE, &part));
        note(exr_initialize_required_attr_simple(file_, part, picture_.width, picture_.height,
                                                 EXR_COMPRESSION_ZIP));
        exr_pixel_type_t const type = picture_.type == SampleType::kHalf ? EXR_PIXEL_HALF : EXR_PIXEL_FLOAT;
        constexpr char const* kNames[][4] = {{"Y"}, {"A", "Y"}, {"B", "G", "R"}, {"A", "B", "G", "R"}};
        for (int i = 0; i < picture_.channels; ++i) { // in the order of the alphabet
            note(exr_add_channel(file_, part, kNames[picture_.channels - 1][i], type,
                                 EXR_PERCEPTUALLY_LOGARITHMIC, 1, 1));
        }
        if (!picture_.attributes.empty()) {
            std::string const text = attribute_text(picture_.attributes);
            note(exr_attr_set_string(file_, part, "umbrix", text.c_str()));
        }
        note(exr_write_header(file_));
    }

    /// The top row first, which is the last one of the picture.
    void write_chunks()
    {
        std::int32_t rows_of_chunk = 0;
        note(good_ ? exr_get_scanlines_per_chunk(file_, 0, &rows_of_chunk) : EXR_ERR_SUCCESS);
        std::size_t const row = picture_.bytes.size() / static_cast<std::size_t>(picture_.height);
        std::vector<std::uint8_t> rows(row * static_cast<std::size_t>(rows_of_chunk));
        for (int top = 0; good_ && top < picture_.height; top += rows_of_chunk) {
            for (int y = top; y < std::min(top + rows_of_chunk, picture_.height); ++y) {
                std::memcpy(&rows[static_cast<std::size_t>(y - top) * row],
                            &picture_.bytes[static_cast<std::size_t>(picture_.height - 1 - y) * row], row);
            }
            write_chunk(top, rows.data(), static_cast<std::int32_t>(row));
        }
    }

    void write_chunk(int top, std::uint8_t const* rows, std::int32_t row)
    {
        exr_chunk_info_t chunk{};
        note(exr_write_scanline_chunk_info(file_, 0, top, &chunk));
        if (!good_) {
            return;
        }
        note(top == 0 ? exr_encoding_initialize(file_, 0, &chunk, &steps_)
                      : exr_encoding_update(file_, 0, &chunk, &steps_));
        auto const size = static_cast<std::int32_t>(sample_size(picture_.type));
        for (int i = 0; good_ && i < steps_.channel_count; ++i) {
            exr_coding_channel_info_t& channel = steps_.channels[i];
            channel.encode_from_ptr = rows + size * place_of(channel.channel_name[0]);
            channel.user_pixel_stride = size * picture_.channels;
            channel.user_line_stride = row;
        }
        if (good_ && top == 0) {
            note(exr_encoding_choose_default_routines(file_, 0, &steps_));
            steps_.encoding_user_data = this;
            library_compress_ = std::exchange(steps_.compress_fn, compress);
        }
        note(good_ ? exr_encoding_run(file_, 0, &steps_) : EXR_ERR_SUCCESS);
    }

    /// A chunk that is as long as its texels counts as uncompressed to a reader, and OpenEXR takes it for
    /// compressed if its compression happens to save nothing and lose nothing.
    static exr_result_t compress(exr_encode_pipeline_t* steps)
    {
        auto const& writer = *static_cast<ExrWriter const*>(steps->encoding_user_data);
        exr_result_t const result = writer.library_compress_(steps);
        if (result == EXR_ERR_SUCCESS && steps->compressed_bytes == steps->packed_bytes) {
            std::memcpy(steps->compressed_buffer, steps->packed_buffer, steps->packed_bytes);
        }
        return result;
    }

    int place_of(char name) const
    {
        return name == 'A' ? picture_.channels - 1 : name == 'B' ? 2 : name == 'G' ? 1 : 0;
    }

    static std::int64_t write(exr_const_context_t, void* to, void const* bytes, std::uint64_t size,
                              std::uint64_t offset, exr_stream_error_func_ptr_t)
    {
        auto& output = *static_cast<SeekableOutput*>(to);
        output.go_to(offset);
        return output.write(bytes, size) ? static_cast<std::int64_t>(size) : -1;
    }

    static void say_nothing(exr_const_context_t, exr_result_t, char const*) {}

    Picture const& picture_;
    exr_context_t file_ = nullptr;
    exr_encode_pipeline_t steps_{};
    exr_result_t (*library_compress_)(exr_encode_pipeline_t*) = nullptr;
    bool good_ = true;
};

/// Halves and floats as they are, with ZIP; whole numbers become floats of 0 to 1. The channels are Y, or R,
/// G and B, and A.
class ExrEncoder : public Encoder {
public:
    bool encode(std::filesystem::path const& file, Picture const& picture) const override
    {
        bool const floats = picture.type == SampleType::kHalf || picture.type == SampleType::kFloat;
        Picture const made = floats ? Picture() : in_floats(picture);
        SeekableOutput output(file);
        bool const written = ExrWriter(output, floats ? picture : made).write();
        return output.close() && written;
    }
};

} // namespace

Encoder const& exr_encoder()
{
    static ExrEncoder const encoder;
    return encoder;
}

} // namespace umbrixlib::toolkit
