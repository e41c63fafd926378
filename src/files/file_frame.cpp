// SPDX-License-Identifier: MIT
#include "files/file_frame_internal.h"

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

FileStack::FileStack(LinkedList<n_layer>* layers, NLayers* stack) : stack_(stack)
{
    int const described = layers != nullptr && layers->count > 0 ? layers->count : 0;
    if (stack_ == nullptr && described > 0) {
        stack_ = &own_.emplace(layers);
    }
    // Contract: equal numbers leave the stack as it is, whatever it holds; one would expect file names to be
    // compared. A stack that was filled by hand stays. Test:
    // UmbrixFileLayers.AStackOfTheSameNumberOfLayersIsNotRebuilt
    if (stack_ == nullptr || stack_->Count() == described) {
        return;
    }
    stack_->Clear();
    for (int i = 0; i < described; ++i) {
        stack_->AddLayer(layers->GetRef(i)->filename.c_str());
    }
}

void settle_size(LayerBranch const& layers, umbrix_options& options, MapShape& shape)
{
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
