// SPDX-License-Identifier: MIT
// One height map from the height layers of a stack.
#include "layers/nlayers.h"

#include "boundary/platform.h"
#include "boundary/texture_kernels.h"
#include "filters/blend_internal.h"
#include "filters/recursive_gaussian.h"
#include "layers/height_joins.h"
#include "layers/layer_access_internal.h"
#include "normals/filter_tables_internal.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace umbrixlib::detail {

namespace {

/// What differs between the two forms of the blend, beside their target. From the second layer on:
struct HeightBlendRules {
    /// The bilateral filter's result replaces all that was blended so far, not the layer's copy.
    bool filter_replaces_blend;
    /// Record 0, not the layer's own, decides whether a layer is blurred.
    bool first_decides_blur;
    /// Overlay takes the opacity of the layer's own record, not of the one before.
    bool overlay_by_own_opacity;
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
    auto const texels = static_cast<std::size_t>(texels_of(size));
    auto heights = std::make_unique_for_overwrite<float[]>(texels);
    platform::prefer_large_pages(heights.get(), texels * sizeof(float));
    return heights;
}

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

/// How a layer joins behind the record @p before, @p own being the layer's.
HeightStep step_of(n_layer const& before, n_layer const& own, HeightBlendRules const& rules)
{
    // Contract: an opacity is limited to 0..100 in the first two modes and not in the others; one rule for
    // all is expected. 150 multiplies or adds one and a half times. Test:
    // NLayersHeights.OpacityIsLimitedInBlendAndOverlayOnly
    HeightStep step{HeightJoin::kAdd, nullptr, 1.0f, fraction_of(before.opacity)};
    if (before.blend_mode == kLayerBlend) {
        step.join = HeightJoin::kFade;
        step.fraction = limited_fraction_of(before.opacity);
    } else if (before.blend_mode == kLayerOverlay) {
        step.join = HeightJoin::kOverlay;
        step.fraction = limited_fraction_of(rules.overlay_by_own_opacity ? own.opacity : before.opacity);
    } else if (before.blend_mode == kLayerMultiply) {
        step.join = HeightJoin::kMultiply;
    }
    return step;
}

/// Height layers on their way into one. Steps that look at nothing but their own texel wait for each other
/// and are then done together, block by block, so that the blend passes through memory once.
class HeightBlend {
public:
    /// @param blend What is blended so far; its array may be exchanged for another.
    HeightBlend(layer_size size, HeightBlendRules const& rules, float*& blend)
        : size_(size), rules_(rules), blend_(blend)
    {
    }
    HeightBlend(HeightBlend const&) = delete;
    HeightBlend& operator=(HeightBlend const&) = delete;
    ~HeightBlend() { delete[] work_; }

    void start(float const* layer, n_layer const& record)
    {
        bool const blurs = record.gaussian > 0.0f;
        RangeTables tables(record.L_Detail);
        if (changes_size_only(record, blurs)) {
            put_off({HeightJoin::kStart, layer, record.n_scale, 1.0f});
        } else {
            filter(layer, record, tables, blurs, blend_, blend_);
        }
    }

    void join(float const* layer, n_layer const& own, bool blurs, HeightStep step)
    {
        RangeTables tables(own.L_Detail);
        if (changes_size_only(own, blurs)) {
            step.layer = layer;
            step.scale = own.n_scale;
        } else {
            finish(); // with what the buffers hold now
            if (work_ == nullptr) {
                work_ = make_heights(size_).release();
            }
            filter(layer, own, tables, blurs, work_, rules_.filter_replaces_blend ? blend_ : work_);
            step.layer = work_;
        }
        put_off(step);
    }

    /// Does the steps that wait.
    void finish()
    {
        constexpr std::ptrdiff_t kBlock = 4096; // texels that a thread takes at once
        std::ptrdiff_t const texels = texels_of(size_);
        if (!waiting_.empty()) {
#pragma omp parallel for schedule(static) if (on_all_threads(waiting_.front()))
            for (std::ptrdiff_t at = 0; at < texels; at += kBlock) {
                for (HeightStep const& step : waiting_) {
                    join_heights(step, at, blend_ + at,
                                 static_cast<std::size_t>(std::min(kBlock, texels - at)));
                }
            }
        }
        waiting_.clear();
    }

private:
    /// The weights that `BilateralFilter` takes. They are made for every layer.
    struct RangeTables {
        std::unique_ptr<float[]> spatial;
        float range[kRangeTableSize] = {};

        explicit RangeTables(float radius) : spatial(std::make_unique<float[]>(spatial_table_size(radius)))
        {
            GenerateExp(radius, spatial.get());
            GenerateExp(kRangeSigma, range);
        }
    };

    /// Whether a layer with @p record takes part as it is, but for its scale.
    static bool changes_size_only(n_layer const& record, bool blurs)
    {
        return !(record.L_Detail > 1.0f) && !blurs && record.depth == 0.0f;
    }

    bool on_all_threads(HeightStep const& step) const
    {
        return step.join != HeightJoin::kOverlay || rules_.overlay_on_all_threads;
    }

    void put_off(HeightStep const& step)
    {
        if (!waiting_.empty() && on_all_threads(waiting_.front()) != on_all_threads(step)) {
            finish();
        }
        waiting_.push_back(step);
    }

    /// A layer's way through the filters of its record into @p work. The bilateral filter's result takes the
    /// place of @p replaced, which may be @p work itself; the steps behind it go on with @p work.
    void filter(float const* layer, n_layer const& record, RangeTables& tables, bool blurs, float*& work,
                float*& replaced)
    {
        int const height = size_.height;
        int const width = size_.width;
        if (record.L_Detail > 1.0f) {
            auto filtered = make_heights(size_);
            copy(layer, work, size_);
            BilateralFilter(work, filtered.get(), height, width, record.L_Detail, tables.spatial.get(),
                            tables.range);
            put(replaced, std::move(filtered));
            scale(work, work, size_, record.n_scale);
        } else {
            scale(layer, work, size_, record.n_scale);
        }
        if (blurs) {
            if (blur_scratch_ == nullptr) {
                blur_scratch_ = make_heights(size_);
            }
            gaussianFilterRGBA(work, work, blur_scratch_.get(), width, height, record.gaussian);
        }
        if (record.depth != 0.0f) {
            ChangeDepth(work, height, width, record.depth, record.n_scale);
        }
    }

    layer_size const size_;
    HeightBlendRules const rules_;
    float*& blend_;
    float* work_ = nullptr; ///< Made when a layer first has to be filtered. May be exchanged for another.
    std::unique_ptr<float[]> blur_scratch_;
    std::vector<HeightStep> waiting_;
};

/// Whether the stack has a first layer to start from. Without its heights or its record there is no blend.
bool can_blend_heights(NLayers const& stack)
{
    return layer_at(stack, 0).heights != nullptr && record_at(stack, 0) != nullptr;
}

void blend_heights(NLayers const& stack, HeightBlendRules const& rules, float*& blend)
{
    Layer const first = layer_at(stack, 0);
    n_layer const& first_record = *record_at(stack, 0);
    HeightBlend blending(first.size, rules, blend);
    blending.start(first.heights, first_record);
    for (int i = 1; i < stack.heights.count; ++i) {
        Layer const layer = layer_at(stack, i);
        n_layer const* const own = record_at(stack, i);
        if (layer.heights == nullptr || layer.texels() < first.texels() || own == nullptr) {
            continue;
        }
        n_layer const& blur_decider = rules.first_decides_blur ? first_record : *own;
        // Contract: the record before this one counts, also if its layer was left out; that of the last layer
        // which joined is expected. Test: NLayersHeights.ASkippedLayersRecordStillJoinsTheNext
        blending.join(layer.heights, *own, blur_decider.gaussian > 0.0f,
                      step_of(*record_at(stack, i - 1), *own, rules));
    }
    blending.finish();
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
        delete[] std::exchange(height_result, nullptr);
        height_result = make_heights(layer_at(*this, 0).size).release();
        blend_heights(*this, kIntoHeightResult, height_result);
    }
}

} // namespace umbrix_v0
