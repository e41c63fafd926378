// SPDX-License-Identifier: MIT
// From pictures in memory to layers.
#include "layers/nlayers.h"

#include "common/rounding.h"
#include "foundation/picture_samples_internal.h"
#include "layers/layer_access_internal.h"

#include <algorithm>
#include <memory>
#include <type_traits>

namespace umbrixlib::detail {

namespace {

layer_size size_of(PictureView const& picture)
{
    return {picture.height, picture.width};
}

/// The mean of the colours.
template <typename Sample>
float height_of(TexelSamples<Sample> const& samples, std::ptrdiff_t texel)
{
    if constexpr (std::is_same_v<Sample, std::uint8_t>) {
        // Contract: the mean of bytes is truncated to a whole one; their mean is expected. The heights of a
        // layer differ by it from those of a run on the picture. Test:
        // NLayersStack.TheMeanOfThreeBytesIsTruncated
        Sample const* const at = samples.first + texel * samples.stride;
        return narrow((at[0] + at[samples.green] + at[samples.blue]) / 3 / 255.0);
    } else {
        return samples.mean(texel);
    }
}

/// Lays @p picture out over @p heights from the first texel on: repeated where it ends, cut off at @p target.
/// A picture of no texels gives zeros.
void tile_heights(PictureView const& picture, float* heights, layer_size target)
{
    if (picture.width < 1 || picture.height < 1) {
        std::fill_n(heights, texels_of(target), 0.0f);
        return;
    }
    PictureSamples::of(picture).visit([&](auto const& samples) {
#pragma omp parallel for schedule(static)
        for (int y = 0; y < target.height; ++y) {
            std::ptrdiff_t const source = static_cast<std::ptrdiff_t>(y % picture.height) * picture.width;
            float* const row = heights + static_cast<std::ptrdiff_t>(y) * target.width;
            for (int x = 0, from = 0; x < target.width; ++x) {
                row[x] = height_of(samples, source + from);
                from = from + 1 < picture.width ? from + 1 : 0;
            }
        }
    });
}

void decode_normals(PictureView const& picture, NormalCoding coding, float3* normals)
{
    auto const component = [coding](double sample) {
        return narrow(coding == NormalCoding::kVectors ? sample : sample * 2.0 - 1.0);
    };
    std::ptrdiff_t const texels = texels_of(size_of(picture));
    PictureSamples::of(picture).visit([&](auto const& samples) {
#pragma omp parallel for schedule(static)
        for (std::ptrdiff_t i = 0; i < texels; ++i) {
            auto const colour = samples.exact_colour(i);
            normals[i] = {component(colour[0]), component(colour[1]), component(colour[2])};
        }
    });
}

} // namespace

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

bool NLayers::AddLayer(umbrixlib::PictureView const& picture)
{
    if (!PictureSamples::are_readable(picture)) {
        return false;
    }
    layer_size const size = sizes.count == 0 ? size_of(picture) : sizes.Get(0);
    auto layer_heights = make_layer_buffer<float>(size);
    tile_heights(picture, layer_heights.get(), size);
    append_layer(*this, make_layer_buffer<float3>(size), std::move(layer_heights), size);
    set_regenerate(*this, Count() - 1, true);
    return true;
}

bool NLayers::AddNormalLayer(umbrixlib::PictureView const& picture, umbrixlib::NormalCoding coding)
{
    if (!PictureSamples::are_readable(picture)) {
        return false;
    }
    layer_size const size = size_of(picture);
    auto layer_normals = make_layer_buffer<float3>(size);
    decode_normals(picture, coding, layer_normals.get());
    append_layer(*this, std::move(layer_normals), nullptr, size);
    set_regenerate(*this, Count() - 1, false);
    return true;
}

bool NLayers::SetLayerData(int index, umbrixlib::PictureView const& picture)
{
    if (index < 0 || index == Count()) {
        return AddLayer(picture);
    }
    if (index > Count() || !PictureSamples::are_readable(picture)) {
        return false;
    }
    set_regenerate(*this, index, true);
    layer_size target = sizes.Get(0);
    if (same_size(target, {})) {
        target = size_of(picture);
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
    tile_heights(picture, *heights.GetRef(index), target);
    return true;
}

} // namespace umbrix_v0
