// SPDX-License-Identifier: MIT
// From image files to layers.
#include "layers/nlayers.h"

#include "boundary/image_io.h"
#include "layers/layer_access_internal.h"
#include "layers/picture_files_internal.h"

#include <vector>

namespace umbrixlib::detail {

namespace {

[[maybe_unused]] bool const stacks_prepare_devil = [] {
    prepare_picture_files = [] { prepare_devil(Overwrite::kAllow); };
    return true;
}();

/// The image that DevIL has bound, as a layer reads it.
struct LayerImage {
    ImageSize size;
    bool coloured; ///< Three bytes a texel, otherwise one.
    ImageBytes bytes;

    PictureView view() const
    {
        return {bytes.get(), size.width, size.height, coloured ? 3 : 1, SampleType::kUint8};
    }
};

LayerImage fetch_bound_image()
{
    LayerImage image{bound_image_size(), bound_image_channels() > 1, nullptr};
    auto const texels =
        static_cast<std::size_t>(image.size.width) * static_cast<std::size_t>(image.size.height);
    image.bytes = make_image_bytes(texels, image.coloured ? 3 : 1);
    copy_pixels(image.size, image.coloured ? PixelFormat::kRgb : PixelFormat::kOneByte, image.bytes.get());
    return image;
}

LayerImage load_layer_image(char const* file)
{
    prepare_devil(Overwrite::kLeaveAsIs);
    // A message, if there were one, would not stop the load: the layer takes what is bound.
    load_image(file);
    return fetch_bound_image();
}

bool is_blank(char const* file)
{
    return *file == '\0';
}

} // namespace

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

using namespace umbrixlib;
using namespace umbrixlib::detail;

void NLayers::AddLayer(char const* file)
{
    if (is_blank(file)) {
        append_layer(*this, nullptr, nullptr, {});
    } else {
        AddLayer(load_layer_image(file).view());
    }
}

void NLayers::AddNormalLayer(char const* file)
{
    if (is_blank(file)) {
        append_layer(*this, nullptr, nullptr, {});
        return;
    }
    LayerImage const image = load_layer_image(file);
    if (image.coloured) {
        AddNormalLayer(image.view());
        return;
    }
    std::vector<float> const zeros(static_cast<std::size_t>(image.size.width) *
                                   static_cast<std::size_t>(image.size.height));
    AddNormalLayer({zeros.data(), image.size.width, image.size.height, 1, SampleType::kFloat},
                   NormalCoding::kVectors);
}

void NLayers::SetLayerData(int index, char const* file)
{
    if (index < 0 || index == Count()) {
        AddLayer(file);
        return;
    }
    if (index > Count()) {
        return;
    }
    prepare_devil(Overwrite::kAllow);
    load_image_unseen(file);
    SetLayerData(index, fetch_bound_image().view());
}

} // namespace umbrix_v0
