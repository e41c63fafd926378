// SPDX-License-Identifier: MIT
#include "formats/direct.h"

#include <OpenEXR/openexr.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace umbrixlib::bench {

namespace {

void need(exr_result_t result)
{
    if (result != EXR_ERR_SUCCESS) {
        std::fprintf(stderr, "OpenEXRCore: %s\n", exr_get_error_code_as_string(result));
        std::exit(1);
    }
}

int place_of(char name)
{
    return name == 'B' ? 2 : name == 'G' ? 1 : 0;
}

} // namespace

void write_exr_directly(std::string const& file, DirectPicture const& picture, int bits, int compression)
{
    exr_context_t exr = nullptr;
    exr_context_initializer_t const start = EXR_DEFAULT_CONTEXT_INITIALIZER;
    need(exr_start_write(&exr, file.c_str(), EXR_WRITE_FILE_DIRECTLY, &start));
    int part = 0;
    need(exr_add_part(exr, nullptr, EXR_STORAGE_SCANLINE, &part));
    need(exr_initialize_required_attr_simple(exr, part, picture.width, picture.height,
                                             static_cast<exr_compression_t>(compression)));
    char const* const names[] = {"B", "G", "R"};
    for (int i = 0; i < picture.channels; ++i) {
        need(exr_add_channel(exr, part, picture.channels == 1 ? "Y" : names[i],
                             bits == 16 ? EXR_PIXEL_HALF : EXR_PIXEL_FLOAT, EXR_PERCEPTUALLY_LOGARITHMIC, 1,
                             1));
    }
    need(exr_write_header(exr));
    std::int32_t rows = 0;
    need(exr_get_scanlines_per_chunk(exr, 0, &rows));
    auto const row = static_cast<std::int32_t>(picture.bytes.size()) / picture.height;
    exr_encode_pipeline_t steps{};
    for (int y = 0; y < picture.height; y += rows) {
        exr_chunk_info_t chunk{};
        need(exr_write_scanline_chunk_info(exr, 0, y, &chunk));
        need(y == 0 ? exr_encoding_initialize(exr, 0, &chunk, &steps)
                    : exr_encoding_update(exr, 0, &chunk, &steps));
        for (int i = 0; i < steps.channel_count; ++i) {
            exr_coding_channel_info_t& channel = steps.channels[i];
            channel.encode_from_ptr =
                picture.bytes.data() + std::ptrdiff_t{row} * y + bits / 8 * place_of(channel.channel_name[0]);
            channel.user_pixel_stride = bits / 8 * picture.channels;
            channel.user_line_stride = row;
        }
        if (y == 0) {
            need(exr_encoding_choose_default_routines(exr, 0, &steps));
        }
        need(exr_encoding_run(exr, 0, &steps));
    }
    need(exr_encoding_destroy(exr, &steps));
    need(exr_finish(&exr));
}

DirectPicture read_exr_directly(std::string const& file)
{
    exr_context_t exr = nullptr;
    exr_context_initializer_t const start = EXR_DEFAULT_CONTEXT_INITIALIZER;
    need(exr_start_read(&exr, file.c_str(), &start));
    exr_attr_box2i_t window{};
    exr_attr_chlist_t const* list = nullptr;
    need(exr_get_data_window(exr, 0, &window));
    need(exr_get_channels(exr, 0, &list));
    DirectPicture picture{window.max.x + 1, window.max.y + 1, list->num_channels, {}};
    auto const type = static_cast<exr_pixel_type_t>(list->entries[0].pixel_type);
    int const size = type == EXR_PIXEL_HALF ? 2 : 4;
    int const row = size * picture.channels * picture.width;
    picture.bytes.resize(static_cast<std::size_t>(row) * static_cast<std::size_t>(picture.height));
    std::int32_t rows = 0;
    need(exr_get_scanlines_per_chunk(exr, 0, &rows));
    exr_decode_pipeline_t steps{};
    for (int y = 0; y < picture.height; y += rows) {
        exr_chunk_info_t chunk{};
        need(exr_read_scanline_chunk_info(exr, 0, y, &chunk));
        need(y == 0 ? exr_decoding_initialize(exr, 0, &chunk, &steps)
                    : exr_decoding_update(exr, 0, &chunk, &steps));
        for (int i = 0; i < steps.channel_count; ++i) {
            exr_coding_channel_info_t& channel = steps.channels[i];
            channel.decode_to_ptr =
                picture.bytes.data() + std::ptrdiff_t{row} * y + size * place_of(channel.channel_name[0]);
            channel.user_pixel_stride = size * picture.channels;
            channel.user_line_stride = row;
            channel.user_bytes_per_element = static_cast<std::int16_t>(size);
            channel.user_data_type = type;
        }
        if (y == 0) {
            need(exr_decoding_choose_default_routines(exr, 0, &steps));
        }
        need(exr_decoding_run(exr, 0, &steps));
    }
    need(exr_decoding_destroy(exr, &steps));
    need(exr_finish(&exr));
    return picture;
}

} // namespace umbrixlib::bench
