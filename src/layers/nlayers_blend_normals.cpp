// SPDX-License-Identifier: MIT
// One normal map from the normals of a stack.
#include "layers/nlayers.h"

#include "boundary/texel_array.h"
#include "boundary/texture_kernels.h"
#include "common/blocks.h"
#include "filters/blend_internal.h"
#include "layers/layer_access_internal.h"
#include "layers/normal_bytes_internal.h"
#include "layers/normal_slopes.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace umbrixlib::detail {

namespace {

/// What differs between the forms of the blend, beside the place of what is blended so far:
///
/// | Form          | blended so far    | BlendNormal gets     | mode 2 multiplies by | slopes are scaled |
/// | ------------- | ----------------- | -------------------- | -------------------- | ----------------- |
/// | no argument   | `result`          | layer, then blend    | the first layer's    | yes               |
/// | `float3*`     | caller's array    | blend, then layer    | the first layer's    | yes               |
/// | bitmap        | array of its own  | blend, then layer    | the first layer's    | yes               |
/// | order         | `result`          | blend, then layer    | the last layer's     | no                |
struct NormalBlendForm {
    bool layer_first;  ///< Order in which `BlendNormal` gets the two normal maps.
    bool last_is_base; ///< Whose heights stand for the blend's in mode 2: of the last layer or of the first.
    bool scaled;       ///< Whether `NormalScale` ends the blend.
};

// Contract: `BlendNormal` weighs its first argument by the opacity, and the form without an argument hands it
// the layer first, the others the blend first; one order is expected. Which map an opacity of 100 leaves
// depends on it. Test: NLayersNormals.TheOrderOfTheModeZeroCallDiffersByForm
constexpr NormalBlendForm kIntoResult = {.layer_first = true, .last_is_base = false, .scaled = true};
constexpr NormalBlendForm kIntoCallersArray = {.layer_first = false, .last_is_base = false, .scaled = true};
// Contract: the heights of the last layer of the order stand for the blend's in mode 2, and nothing scales
// the slopes; one would expect what the other forms do. Test: NLayersNormals.AnOrderMultipliesByItsLastLayer
constexpr NormalBlendForm kInOrder = {.layer_first = false, .last_is_base = true, .scaled = false};

/// Layers on their way into one normal map.
///
/// The kernels are called between parallel loops, not from inside one: they see one caller at a time, all of
/// what the loop before wrote, and may use all threads themselves.
class NormalBlend {
public:
    /// @param size    That of all layers that join.
    /// @param first   The lowest layer's normals.
    /// @param blend   The blend so far, in the end the result.
    /// @param target  Where mode 0 puts its cross-fade, or null if there is no room for it.
    /// @param base    Heights that stand for the blend's in mode 2, or null.
    NormalBlend(layer_size size, bool layer_first, float3 const* first, float3* blend, float3* target,
                float const* base)
        : size_(size), layer_first_(layer_first), blend_(blend), target_(target), base_(base), from_(first)
    {
    }

    void join(Layer const& layer, n_layer const& before)
    {
        if (layer.normals == blend_) {
            finish(); // the caller blends into this layer, so what is blended so far takes its place
        }
        switch (before.blend_mode) {
        case kLayerBlend:
            finish();
            cross_fade_slopes(layer.normals, before.opacity);
            break;
        case kLayerOverlay:
            finish();
            overlay_colours(layer.normals, before.opacity);
            break;
        case kLayerMultiply:
            if (base_ != nullptr && layer.heights != nullptr) {
                waiting_.push_back({layer.normals, layer.heights, fraction_of(before.opacity)});
            }
            break;
        default:
            waiting_.push_back({layer.normals, nullptr, fraction_of(before.opacity)});
            break;
        }
    }

    /// Does the steps that wait.
    void finish()
    {
        for_blocks(texels_of(size_), [&](std::ptrdiff_t at, std::size_t count) {
            if (!waiting_.empty()) {
                join_slopes(waiting_.data(), waiting_.size(), from_, base_, blend_, at, count);
            } else if (from_ != blend_) {
                std::copy_n(from_ + at, count, blend_ + at);
            }
        });
        from_ = blend_;
        waiting_.clear();
    }

private:
    void cross_fade_slopes(float3* layer, float opacity) const
    {
        if (target_ == nullptr) {
            return;
        }
        for_blocks(texels_of(size_), [&](std::ptrdiff_t at, std::size_t count) {
            normals_to_slopes(blend_ + at, count);
            normals_to_slopes(layer + at, count);
        });
        BlendNormal(opacity, layer_first_ ? layer : blend_, layer_first_ ? blend_ : layer, target_,
                    size_.height, size_.width);
        for_blocks(texels_of(size_), [&](std::ptrdiff_t at, std::size_t count) {
            slopes_to_normals(blend_ + at, count);
            slopes_to_normals(layer + at, count);
        });
    }

    void overlay_colours(float3 const* layer, float opacity)
    {
        if (colours_ == nullptr) {
            colours_ = make_texel_array<float3>(static_cast<std::size_t>(texels_of(size_)));
            layer_colours_ = make_texel_array<float3>(static_cast<std::size_t>(texels_of(size_)));
        }
        float3* const colours = colours_.get();
        float3* const layer_colours = layer_colours_.get();
        for_blocks(texels_of(size_), [&](std::ptrdiff_t at, std::size_t count) {
            normals_to_colours(blend_ + at, colours + at, count);
            normals_to_colours(layer + at, layer_colours + at, count);
        });
        Blend(BlendType_Overlay, opacity, colours, layer_colours, colours, size_.height, size_.width);
        for_blocks(texels_of(size_), [&](std::ptrdiff_t at, std::size_t count) {
            colours_to_normals(colours + at, blend_ + at, count);
        });
    }

    layer_size const size_;
    bool const layer_first_;
    float3* const blend_;
    float3* const target_;
    float const* const base_;
    TexelArray<float3> colours_, layer_colours_; ///< Of the overlay.
    float3 const* from_;                         ///< What is blended so far: the first layer or `blend_`.
    std::vector<SlopeStep> waiting_; ///< Steps on it that need no kernel, so they can be done together.
};

/// Blends the layers of @p sequence into @p blend.
/// @param target As in NormalBlend.
void blend_normals(NLayers& stack, NormalBlendForm const& form, std::vector<int> const& sequence,
                   float3* blend, float3* target)
{
    stack.GenerateLayers();
    Layer const first = layer_at(stack, sequence.front());
    layer_size const size = first.size;
    Layer const base = layer_at(stack, form.last_is_base ? sequence.back() : 0);
    float const* const base_heights = base.texels() >= texels_of(size) ? base.heights : nullptr;
    n_layer const* const scale = form.scaled ? record_at(stack, 0) : nullptr;
    NormalBlend blending(size, form.layer_first, first.normals, blend, target, base_heights);
    for (std::size_t i = 1; i < sequence.size(); ++i) {
        Layer const layer = layer_at(stack, sequence[i]);
        n_layer const* const before = record_at(stack, sequence[i - 1]);
        bool const has_normals = layer.normals != nullptr || layer.texels() == 0;
        if (is_layer(stack, sequence[i]) && same_size(layer.size, size) && has_normals && before != nullptr) {
            blending.join(layer, *before);
        }
    }
    blending.finish();
    if (scale != nullptr) {
        NormalScale(blend, size.height, size.width, scale->normal_scale);
    }
}

/// Whether layer @p index can be the first of a blend.
bool can_start(NLayers const& stack, int index)
{
    Layer const layer = layer_at(stack, index);
    return is_layer(stack, index) && (layer.normals != nullptr || layer.texels() == 0);
}

std::vector<int> all_layers(NLayers const& stack)
{
    std::vector<int> sequence(static_cast<std::size_t>(stack.normals.count));
    std::iota(sequence.begin(), sequence.end(), 0);
    return sequence;
}

} // namespace

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

void NLayers::BlendLayers()
{
    if (can_start(*this, 0)) {
        make_result(sizes.Get(0));
        blend_normals(*this, kIntoResult, all_layers(*this), result, result);
    }
}

void NLayers::BlendLayers(float3* destination)
{
    if (can_start(*this, 0) && destination != nullptr) {
        blend_normals(*this, kIntoCallersArray, all_layers(*this), destination, result_for(sizes.Get(0)));
    }
}

void NLayers::BlendLayers(int* order, int order_count)
{
    if (Count() > 0 && order != nullptr && can_start(*this, *order)) {
        make_result(sizes.Get(*order));
        // Contract: a count of 0 or less copies the first entry's layer; an empty blend is expected. Test:
        // NLayersNormals.AnOrderOfNoEntriesCopiesItsFirstLayer
        int const layers = std::max(order_count, 1);
        blend_normals(*this, kInOrder, std::vector<int>(order, order + layers), result, result);
    }
}

void NLayers::BlendLayersToBmp(unsigned char* bitmap)
{
    if (can_start(*this, 0)) {
        layer_size const size = sizes.Get(0);
        auto const blend = umbrixlib::make_texel_array<float3>(static_cast<std::size_t>(texels_of(size)));
        blend_normals(*this, kIntoCallersArray, all_layers(*this), blend.get(), result_for(size));
        normals_to_bitmap(blend.get(), size, bitmap);
    }
}

void NLayers::CopyResultToBmp(unsigned char* bitmap)
{
    layer_size const size = layer_at(*this, 0).size;
    if (float3 const* const normals_shown = result_for(size)) {
        normals_to_bitmap(normals_shown, size, bitmap);
    }
}

} // namespace umbrix_v0
