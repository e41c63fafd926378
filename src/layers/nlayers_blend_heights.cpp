// SPDX-License-Identifier: MIT
// One height map from the height layers of a stack.
#include "layers/nlayers.h"

#include "boundary/texture_kernels.h"
#include "filters/blend_internal.h"
#include "filters/recursive_gaussian.h"
#include "layers/height_overlay.h"
#include "layers/layer_access_internal.h"
#include "normals/filter_tables_internal.h"

#include <algorithm>
#include <memory>

namespace umbrixlib::detail {

namespace {

/// What differs between the two forms of the blend, beside their target. From the second layer on:
struct HeightBlendRules {
    bool filter_replaces_blend;  ///< The bilateral filter's result takes the place of all that was blended so
                                 ///< far, not that of the layer's copy.
    bool first_decides_blur;     ///< Whether a layer is blurred is asked of record 0, not of its own.
    bool overlay_by_own_opacity; ///< Overlay takes the opacity of the layer's own record, not of the one
                                 ///< before.
    bool overlay_on_all_threads;
};

constexpr HeightBlendRules kIntoCallersArray = {.filter_replaces_blend = false,
                                                .first_decides_blur = false,
                                                .overlay_by_own_opacity = false,
                                                .overlay_on_all_threads = true};

// The contract of `NLayers::BlendHeightMap()` tells what comes of it.
constexpr HeightBlendRules kIntoHeightResult = {.filter_replaces_blend = true,
                                                .first_decides_blur = true,
                                                .overlay_by_own_opacity = true,
                                                .overlay_on_all_threads = false};

std::unique_ptr<float[]> make_heights(layer_size size)
{
    return std::make_unique_for_overwrite<float[]>(static_cast<std::size_t>(texels_of(size)));
}

/// Heights whose array may be exchanged for another on the way.
struct HeldHeights {
    float* data;

    explicit HeldHeights(float* heights) : data(heights) {}
    HeldHeights(HeldHeights const&) = delete;
    HeldHeights& operator=(HeldHeights const&) = delete;
    ~HeldHeights() { delete[] data; }
};

/// Releases the array in @p place and puts @p heights there.
void put(float*& place, std::unique_ptr<float[]> heights)
{
    delete[] place;
    place = heights.release();
}

/// to = from * factor; both may be the same.
void scale(float const* from, float* to, layer_size size, float factor)
{
    std::ptrdiff_t const texels = texels_of(size);
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t i = 0; i < texels; ++i) {
        to[i] = product_of(from[i], factor);
    }
}

void copy(float const* from, float* to, layer_size size)
{
    std::ptrdiff_t const texels = texels_of(size);
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t i = 0; i < texels; ++i) {
        to[i] = from[i];
    }
}

/// A layer's way through the filters of its record into @p work. The bilateral filter's result takes the
/// place of @p replaced, which may be @p work itself; the steps behind it go on with @p work.
void filter_layer(float const* layer, n_layer const& record, bool blurs, layer_size size, float* blur_scratch,
                  float*& work, float*& replaced)
{
    int const height = size.height;
    int const width = size.width;
    auto const spatial = std::make_unique<float[]>(spatial_table_size(record.L_Detail));
    float range[kRangeTableSize] = {};
    GenerateExp(record.L_Detail, spatial.get());
    GenerateExp(kRangeSigma, range);
    if (record.L_Detail > 1.0f) {
        auto filtered = make_heights(size);
        copy(layer, work, size);
        BilateralFilter(work, filtered.get(), height, width, record.L_Detail, spatial.get(), range);
        put(replaced, std::move(filtered));
        scale(work, work, size, record.n_scale);
    } else {
        scale(layer, work, size, record.n_scale);
    }
    if (blurs) {
        gaussianFilterRGBA(work, work, blur_scratch, width, height, record.gaussian);
    }
    if (record.depth != 0.0f) {
        ChangeDepth(work, height, width, record.depth, record.n_scale);
    }
}

/// blend = cross-fade from blend to @p second of (layer, blend), which gives a double.
template <typename Second>
void fade(float* blend, float const* layer, layer_size size, float fraction, Second second)
{
    std::ptrdiff_t const texels = texels_of(size);
    double const t = wide(fraction);
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t i = 0; i < texels; ++i) {
        blend[i] = cross_fade(second(layer[i], blend[i]), blend[i], t);
    }
}

void overlay(float* blend, float const* layer, layer_size size, float fraction, bool on_all_threads)
{
    constexpr std::ptrdiff_t kBlock = 4096; // texels that a thread takes at once
    std::ptrdiff_t const texels = texels_of(size);
#pragma omp parallel for schedule(static) if (on_all_threads)
    for (std::ptrdiff_t at = 0; at < texels; at += kBlock) {
        overlay_heights(blend + at, layer + at, fraction,
                        static_cast<std::size_t>(std::min(kBlock, texels - at)));
    }
}

/// Folds @p layer into @p blend. @p before is the record of the layer before this one, @p own its own.
void join(float* blend, float const* layer, layer_size size, n_layer const& before, n_layer const& own,
          HeightBlendRules const& rules)
{
    // Contract: an opacity is limited to 0..100 in the first two modes and not in the others; one rule for
    // all is expected. 150 multiplies or adds one and a half times. Test:
    // NLayersHeights.OpacityIsLimitedInBlendAndOverlayOnly
    switch (before.blend_mode) {
    case kLayerBlend:
        fade(blend, layer, size, limited_fraction_of(before.opacity),
             [](float l, float /*b*/) { return wide(l); });
        break;
    case kLayerOverlay:
        overlay(blend, layer, size,
                limited_fraction_of(rules.overlay_by_own_opacity ? own.opacity : before.opacity),
                rules.overlay_on_all_threads);
        break;
    case kLayerMultiply:
        fade(blend, layer, size, fraction_of(before.opacity),
             [](float l, float b) { return wide(l) * wide(b); });
        break;
    default:
        fade(blend, layer, size, fraction_of(before.opacity),
             [](float l, float b) { return wide(l) + wide(b); });
        break;
    }
}

/// Whether the stack has a first layer to start from. Without its heights or its record there is no blend.
bool can_blend_heights(NLayers const& stack)
{
    return layer_at(stack, 0).heights != nullptr && record_at(stack, 0) != nullptr;
}

void blend_heights(NLayers const& stack, HeightBlendRules const& rules, float*& blend)
{
    Layer const first = layer_at(stack, 0);
    n_layer const& first_record = *record_at(stack, 0);
    layer_size const size = first.size;
    auto const blur_scratch = make_heights(size);
    HeldHeights work{make_heights(size).release()};

    filter_layer(first.heights, first_record, first_record.gaussian > 0.0f, size, blur_scratch.get(), blend,
                 blend);
    for (int i = 1; i < stack.heights.count; ++i) {
        Layer const layer = layer_at(stack, i);
        n_layer const* const own = record_at(stack, i);
        if (layer.heights == nullptr || layer.texels() < texels_of(size) || own == nullptr) {
            continue;
        }
        n_layer const& blur_decider = rules.first_decides_blur ? first_record : *own;
        filter_layer(layer.heights, *own, blur_decider.gaussian > 0.0f, size, blur_scratch.get(), work.data,
                     rules.filter_replaces_blend ? blend : work.data);
        // Contract: the record before this one counts, also if its layer was left out; that of the last layer
        // which joined is expected. Test: NLayersHeights.ASkippedLayersRecordStillJoinsTheNext
        join(blend, work.data, size, *record_at(stack, i - 1), *own, rules);
    }
}

} // namespace

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

void NLayers::BlendHeightMap(float*& height)
{
    if (can_blend_heights(*this) && height != nullptr) {
        blend_heights(*this, kIntoCallersArray, height);
    }
}

void NLayers::BlendHeightMap()
{
    if (can_blend_heights(*this)) {
        put(height_result, make_heights(layer_at(*this, 0).size));
        blend_heights(*this, kIntoHeightResult, height_result);
    }
}

} // namespace umbrix_v0
