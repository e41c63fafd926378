// SPDX-License-Identifier: MIT
#include "umbrix/file_frame_internal.h"

#include "boundary/image_io.h"

namespace umbrixlib::detail {

bool open_file(std::string const& input, MapShape& shape)
{
    prepare_devil(Overwrite::kAllow);
    if (load_image(input.c_str()) == FileOutcome::kMessageShown) {
        return false;
    }
    ImageSize const size = bound_image_size();
    shape = {size.height, size.width, bound_image_channels()};
    return true;
}

void join_layers(LayerBranch& layers, umbrix_options& options, MapShape& shape)
{
    layers.follow_descriptions();
    layers.settle(options, shape);
    options.image_height = shape.rows;
    options.image_width = shape.cols;
}

void hand_over_bytes(MapShape shape, unsigned char* bytes)
{
    replace_image({shape.cols, shape.rows}, shape.channels < 4 ? 3 : 4, bytes);
}

bool close_file(std::string const& output, umbrix_options const& options, KeptBuffers& kept)
{
    if (save_image(output.c_str()) == FileOutcome::kMessageShown) {
        if (options.keep_buffers) {
            kept.drop_ao_map();
        }
        return false;
    }
    shut_down_devil();
    return true;
}

bool has_reversed_rows(std::string const& output)
{
    return output.find(".vtf") != std::string::npos;
}

} // namespace umbrixlib::detail
