// SPDX-License-Identifier: MIT
#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/formats/exr_channels.h"
#include "toolkit/pictures/formats/exr_file.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

constexpr double kMostWhole = 4294967295.0; ///< Of a channel of whole numbers; stands for 1.
constexpr double kBytesPerChunk = 16.0;     ///< At least: where it is, how long it is, and its row.

/// The steps by which OpenEXRCore decodes a chunk. Keeps its buffers from one to the next.
class Pipeline {
public:
    Pipeline(ExrFile const& file, std::vector<std::size_t> const& taken, Picture& picture)
        : file_(file), taken_(taken), picture_(picture)
    {
    }
    ~Pipeline() { exr_decoding_destroy(file_.get(), &steps_); }
    Pipeline(Pipeline const&) = delete;
    Pipeline& operator=(Pipeline const&) = delete;

    /// Decodes @p chunk into the picture, from column @p left of row @p top on; rows are counted from the top
    /// and stored in that order.
    void decode(exr_chunk_info_t const& chunk, std::size_t left, std::size_t top)
    {
        bool const first = steps_.channels == nullptr;
        file_.check(first ? exr_decoding_initialize(file_.get(), 0, &chunk, &steps_)
                          : exr_decoding_update(file_.get(), 0, &chunk, &steps_));
        std::size_t const size = sample_size(picture_.type);
        std::size_t const texel = size * taken_.size();
        std::size_t const row = texel * static_cast<std::size_t>(picture_.width);
        for (int i = 0; i < steps_.channel_count; ++i) {
            steps_.channels[i].decode_to_ptr = nullptr;
        }
        for (std::size_t i = 0; i < taken_.size(); ++i) {
            exr_coding_channel_info_t& channel = steps_.channels[taken_[i]];
            channel.decode_to_ptr = &picture_.bytes[top * row + left * texel + i * size];
            channel.user_pixel_stride = static_cast<std::int32_t>(texel);
            channel.user_line_stride = static_cast<std::int32_t>(row);
            channel.user_bytes_per_element = static_cast<std::int16_t>(size);
            channel.user_data_type = channel.data_type == EXR_PIXEL_UINT  ? EXR_PIXEL_UINT
                                     : picture_.type == SampleType::kHalf ? EXR_PIXEL_HALF
                                                                          : EXR_PIXEL_FLOAT;
        }
        if (first) {
            file_.check(exr_decoding_choose_default_routines(file_.get(), 0, &steps_));
            decompress_ = steps_.decompress_fn;
        }
        // OpenEXRCore takes B44's chunks that were not worth to be compressed for compressed ones.
        bool const is_plain = chunk.packed_size == chunk.unpacked_size;
        steps_.decompress_fn = is_plain && decompress_ != nullptr ? copy_chunk : decompress_;
        file_.check(exr_decoding_run(file_.get(), 0, &steps_));
    }

private:
    static exr_result_t copy_chunk(exr_decode_pipeline_t* steps)
    {
        if (steps->unpacked_buffer == steps->packed_buffer) {
            return EXR_ERR_SUCCESS;
        }
        if (steps->unpacked_alloc_size < steps->chunk.packed_size) {
            return EXR_ERR_CORRUPT_CHUNK;
        }
        std::memcpy(steps->unpacked_buffer, steps->packed_buffer, steps->chunk.packed_size);
        return EXR_ERR_SUCCESS;
    }

    ExrFile const& file_;
    std::vector<std::size_t> const& taken_;
    Picture& picture_;
    exr_decode_pipeline_t steps_{};
    decltype(steps_.decompress_fn) decompress_ = nullptr; ///< OpenEXRCore's own.
};

/// Whole numbers that are where floats should be.
void spread_whole_numbers(Picture& picture, std::size_t channel)
{
    auto const samples = picture.samples<float>();
    for (std::size_t i = channel; i < samples.size(); i += static_cast<std::size_t>(picture.channels)) {
        samples[i] =
            static_cast<float>(static_cast<double>(std::bit_cast<std::uint32_t>(samples[i])) / kMostWhole);
    }
}

void turn_rows(Picture& picture)
{
    auto const height = static_cast<std::ptrdiff_t>(picture.height);
    auto const row = static_cast<std::ptrdiff_t>(picture.bytes.size()) / height;
    for (std::ptrdiff_t y = 0; y < height / 2; ++y) {
        auto const low = picture.bytes.begin() + y * row;
        std::swap_ranges(low, low + row, picture.bytes.begin() + (height - 1 - y) * row);
    }
}

/// The picture of an OpenEXR file of one part.
class ExrReader {
public:
    explicit ExrReader(SourceFile& source) : source_(source), file_(source) {}

    DecodedFile decode()
    {
        read_size();
        choose();
        Picture picture = make_picture(width_, height_, static_cast<int>(channels_.taken.size()), type_);
        exr_storage_t storage{};
        file_.check(exr_get_storage(file_.get(), 0, &storage));
        if (storage == EXR_STORAGE_TILED) {
            read_tiles(picture);
        } else {
            read_rows(picture);
        }
        for (std::size_t i = 0; i < channels_.taken.size(); ++i) {
            if (list_->entries[channels_.taken[i]].pixel_type == EXR_PIXEL_UINT) {
                spread_whole_numbers(picture, i);
            }
        }
        turn_rows(picture);
        picture.attributes = attributes();
        return {std::move(picture), false, "OpenEXR", std::move(notes_)};
    }

private:
    Attributes attributes() const
    {
        std::int32_t length = 0;
        char const* text = nullptr;
        if (exr_attr_get_string(file_.get(), 0, "umbrix", &length, &text) != EXR_ERR_SUCCESS || length < 0) {
            return {};
        }
        return parse_attributes({text, static_cast<std::size_t>(length)});
    }

    void read_size()
    {
        exr_attr_box2i_t shown{};
        file_.check(exr_get_data_window(file_.get(), 0, &window_));
        file_.check(exr_get_display_window(file_.get(), 0, &shown));
        double const width = static_cast<double>(window_.max.x) - window_.min.x + 1;
        double const height = static_cast<double>(window_.max.y) - window_.min.y + 1;
        source_.check_size(width, height);
        width_ = static_cast<int>(width);
        height_ = static_cast<int>(height);
        if (window_.min.x != shown.min.x || window_.min.y != shown.min.y || window_.max.x != shown.max.x ||
            window_.max.y != shown.max.y) {
            notes_.emplace_back("all that it holds is taken, which is not what its display window shows");
        }
    }

    /// Takes channels, and looks whether the file can hold these.
    void choose()
    {
        file_.check(exr_get_channels(file_.get(), 0, &list_));
        std::vector<std::string> names;
        for (int i = 0; i < list_->num_channels; ++i) {
            names.emplace_back(list_->entries[i].name.str);
        }
        ExrChannelsRefused refused;
        channels_ = choose_channels(names, refused);
        if (channels_.taken.empty()) {
            source_.refuse(refused.what, refused.remedy);
        }
        type_ = SampleType::kHalf;
        double texel = 0;
        for (std::size_t const i : channels_.taken) {
            exr_attr_chlist_entry_t const& channel = list_->entries[i];
            if (channel.x_sampling != 1 || channel.y_sampling != 1) {
                source_.refuse("it is an OpenEXR picture with channels of fewer texels",
                               "save them in full resolution");
            }
            type_ = channel.pixel_type == EXR_PIXEL_HALF ? type_ : SampleType::kFloat;
            texel += channel.pixel_type == EXR_PIXEL_HALF ? 2 : 4;
        }
        check_compression(texel);
        if (!channels_.layer.empty()) {
            notes_.push_back(fmt::format("its layer {} is taken", channels_.layer));
        }
        if (channels_.taken.size() < names.size()) {
            notes_.push_back(fmt::format("{} of its {} channels are left out",
                                         names.size() - channels_.taken.size(), names.size()));
        }
    }

    void check_compression(double texel) const
    {
        exr_compression_t compression{};
        std::int32_t chunks = 0;
        file_.check(exr_get_compression(file_.get(), 0, &compression));
        file_.check(exr_get_chunk_count(file_.get(), 0, &chunks));
        // OpenEXRCore 3.1.5 has no decoder for it.
        if (compression == EXR_COMPRESSION_DWAA || compression == EXR_COMPRESSION_DWAB) {
            source_.refuse("it is an OpenEXR picture compressed with DWA", "save it with ZIP or PIZ");
        }
        source_.check_length(chunks * kBytesPerChunk);
        if (compression == EXR_COMPRESSION_NONE) {
            source_.check_length(texel * width_ * height_);
        }
    }

    void read_rows(Picture& picture) const
    {
        Pipeline pipeline(file_, channels_.taken, picture);
        std::int32_t rows = 0;
        file_.check(exr_get_scanlines_per_chunk(file_.get(), 0, &rows));
        if (rows < 1) {
            source_.refuse_as_damaged();
        }
        for (int y = 0; y < height_; y += rows) {
            exr_chunk_info_t chunk{};
            file_.check(exr_read_scanline_chunk_info(file_.get(), 0, window_.min.y + y, &chunk));
            if (chunk.start_y != window_.min.y + y || chunk.height > height_ - y || chunk.width != width_) {
                source_.refuse_as_damaged();
            }
            pipeline.decode(chunk, 0, static_cast<std::size_t>(y));
        }
    }

    /// Those of the largest level.
    void read_tiles(Picture& picture) const
    {
        Pipeline pipeline(file_, channels_.taken, picture);
        std::int32_t width = 0;
        std::int32_t height = 0;
        file_.check(exr_get_tile_sizes(file_.get(), 0, 0, 0, &width, &height));
        if (width < 1 || height < 1) {
            source_.refuse_as_damaged();
        }
        for (int top = 0; top < height_; top += height) {
            for (int left = 0; left < width_; left += width) {
                exr_chunk_info_t chunk{};
                file_.check(
                    exr_read_tile_chunk_info(file_.get(), 0, left / width, top / height, 0, 0, &chunk));
                if (chunk.width > width_ - left || chunk.height > height_ - top) {
                    source_.refuse_as_damaged();
                }
                pipeline.decode(chunk, static_cast<std::size_t>(left), static_cast<std::size_t>(top));
            }
        }
    }

    SourceFile& source_;
    ExrFile file_;
    exr_attr_box2i_t window_{};
    int width_ = 0;
    int height_ = 0;
    exr_attr_chlist_t const* list_ = nullptr;
    ExrChannels channels_;
    SampleType type_ = SampleType::kHalf;
    std::vector<std::string> notes_;
};

class ExrDecoder : public Decoder {
public:
    bool takes(SourceFile const& source) const override { return source.begins_with("\x76\x2f\x31\x01"); }

    DecodedFile decode(SourceFile& source) const override { return ExrReader(source).decode(); }
};

} // namespace

Decoder const& exr_decoder()
{
    static ExrDecoder const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
