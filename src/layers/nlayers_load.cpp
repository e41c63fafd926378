// SPDX-License-Identifier: MIT
// From image files to layers.
#include "layers/nlayers.h"

#include "boundary/image_io.h"
#include "common/rounding.h"
#include "layers/layer_access_internal.h"

#include <algorithm>
#include <memory>

namespace umbrixlib::detail {

namespace {

/// The image that DevIL has bound, as a layer reads it.
struct LayerImage {
    layer_size size;
    bool coloured; ///< Three bytes a texel, otherwise one.
    ImageBytes bytes;
};

LayerImage fetch_bound_image()
{
    ImageSize const bound = bound_image_size();
    LayerImage image{{bound.height, bound.width}, bound_image_channels() > 1, nullptr};
    image.bytes = make_image_bytes(static_cast<std::size_t>(texels_of(image.size)), image.coloured ? 3 : 1);
    copy_pixels(bound, image.coloured ? PixelFormat::kRgb : PixelFormat::kOneByte, image.bytes.get());
    return image;
}

float height_of(LayerImage const& image, std::ptrdiff_t texel)
{
    unsigned char const* const bytes = image.bytes.get();
    if (!image.coloured) {
        return narrow(bytes[texel] / 255.0);
    }
    unsigned char const* const colour = bytes + 3 * texel;
    return narrow((colour[0] + colour[1] + colour[2]) / 3 / 255.0);
}

/// Lays @p image out over @p heights from the first texel on: repeated where it ends, cut off at @p target.
/// An image of no texels gives zeros.
void tile_heights(LayerImage const& image, float* heights, layer_size target)
{
    if (texels_of(image.size) <= 0) {
        std::fill_n(heights, texels_of(target), 0.0f);
        return;
    }
#pragma omp parallel for schedule(static)
    for (int y = 0; y < target.height; ++y) {
        std::ptrdiff_t const source = static_cast<std::ptrdiff_t>(y % image.size.height) * image.size.width;
        float* const row = heights + static_cast<std::ptrdiff_t>(y) * target.width;
        for (int x = 0, from = 0; x < target.width; ++x) {
            row[x] = height_of(image, source + from);
            from = from + 1 < image.size.width ? from + 1 : 0;
        }
    }
}

/// Vectors of -1..1; an image of one byte a texel has none, and leaves @p normals alone.
void decode_normals(LayerImage const& image, float3* normals)
{
    if (!image.coloured) {
        return;
    }
    std::ptrdiff_t const texels = texels_of(image.size);
    unsigned char const* const bytes = image.bytes.get();
    auto const component = [](unsigned char byte) { return narrow(byte / 255.0 * 2.0 - 1.0); };
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t i = 0; i < texels; ++i) {
        unsigned char const* const colour = bytes + 3 * i;
        normals[i] = {component(colour[0]), component(colour[1]), component(colour[2])};
    }
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

template <typename T>
std::unique_ptr<T[]> make_buffer(layer_size size)
{
    return std::make_unique<T[]>(static_cast<std::size_t>(texels_of(size)));
}

void append(NLayers& stack, std::unique_ptr<float3[]> normals, std::unique_ptr<float[]> heights,
            layer_size size)
{
    stack.normals.Add(normals.release());
    stack.heights.Add(heights.release());
    stack.sizes.Add(size);
}

void set_regenerate(NLayers& stack, int index, bool regenerate)
{
    if (n_layer* const record = record_at(stack, index)) {
        record->regenerate = regenerate;
    }
}

} // namespace

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

void NLayers::AddLayer(char const* file)
{
    if (is_blank(file)) {
        append(*this, nullptr, nullptr, {});
        return;
    }
    LayerImage const image = load_layer_image(file);
    layer_size const size = sizes.count == 0 ? image.size : sizes.Get(0);
    auto layer_heights = make_buffer<float>(size);
    tile_heights(image, layer_heights.get(), size);
    append(*this, make_buffer<float3>(size), std::move(layer_heights), size);
    set_regenerate(*this, Count() - 1, true);
}

void NLayers::AddNormalLayer(char const* file)
{
    if (is_blank(file)) {
        append(*this, nullptr, nullptr, {});
        return;
    }
    LayerImage const image = load_layer_image(file);
    auto layer_normals = make_buffer<float3>(image.size);
    decode_normals(image, layer_normals.get());
    append(*this, std::move(layer_normals), nullptr, image.size);
    set_regenerate(*this, Count() - 1, false);
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
    LayerImage const image = fetch_bound_image();
    set_regenerate(*this, index, true);
    layer_size target = sizes.Get(0);
    if (same_size(target, {})) {
        target = image.size;
        if (index != 0) {
            Layer const first = layer_at(*this, 0);
            resize_layer(0, target, first.normals != nullptr, first.heights != nullptr);
        }
        resize_layer(index, target, true, true);
    } else {
        Layer const layer = layer_at(*this, index);
        bool const lacks_room = layer.texels() < texels_of(target);
        resize_layer(index, target, layer.normals == nullptr || lacks_room,
                     layer.heights == nullptr || lacks_room);
    }
    tile_heights(image, *heights.GetRef(index), target);
}

} // namespace umbrix_v0
