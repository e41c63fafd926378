// SPDX-License-Identifier: MIT
#include "umbrix/map_run_internal.h"

#include "umbrix/grading_internal.h"
#include "umbrix/texel_steps_internal.h"

#include <algorithm>

/// @file
/// The last stages of a run: the map from light, open shares and alpha, its grading, its bytes.

namespace umbrixlib::detail {

/// The source's alphas. With layers' heights none of its samples is read.
void MapRun::find_alphas(std::ptrdiff_t first, std::ptrdiff_t count, float* alphas) const
{
    if (options_.blend_height) {
        std::fill_n(alphas, count, 0.0f);
        return;
    }
    source_.samples.visit([&](auto const& samples) {
        for (std::ptrdiff_t i = 0; i < count; ++i) {
            alphas[i] = samples.alpha_or_one(first + i);
        }
    });
}

/// @p count texels of the map before its grading, from @p first on.
void MapRun::compose(std::ptrdiff_t first, std::ptrdiff_t count, float3* colours, float* alphas) const
{
    float3 const* const light = normals_.get() + first;
    float3 const* const open = open_ + first;
    if (makes_light_ && makes_occlusion_) {
        for (std::ptrdiff_t i = 0; i < count; ++i) {
            colours[i] = product(light[i], open[i]);
        }
    } else if (makes_light_ || makes_occlusion_) {
        std::copy_n(makes_light_ ? light : open, count, colours);
    } else {
        std::fill_n(colours, count, float3{1.0f, 1.0f, 1.0f}); // full light, all of the sky open
    }
    if (makes_occlusion_ && options_.preserve) {
        std::copy_n(heights_.data.get() + first, count, alphas);
    } else if (makes_occlusion_) {
        std::fill_n(alphas, count, 1.0f);
    } else {
        find_alphas(first, count, alphas);
    }
}

/// Calls @p body with the number of the first texel, how many there are, their colours and alphas, for blocks
/// that together are the texels from @p first to @p last - 1.
template <typename Body>
void MapRun::for_composed_blocks(std::ptrdiff_t first, std::ptrdiff_t last, Body&& body) const
{
    float3 colours[kByteBlock];
    float alphas[kByteBlock];
    for (std::ptrdiff_t at = first; at < last; at += kByteBlock) {
        std::ptrdiff_t const count = std::min(kByteBlock, last - at);
        compose(at, count, colours, alphas);
        body(at, count, colours, alphas);
    }
}

void MapRun::compose_map(int thread)
{
    auto const put = [this](std::ptrdiff_t first, std::ptrdiff_t count, float3 const* colours,
                            float const* alphas) {
        float4* const texels = parts.map.get() + first;
        for (std::ptrdiff_t i = 0; i < count; ++i) {
            texels[i] = {colours[i].x, colours[i].y, colours[i].z, alphas[i]};
        }
    };
    for_own_texels(thread,
                   [&](std::ptrdiff_t first, std::ptrdiff_t last) { for_composed_blocks(first, last, put); });
#pragma omp barrier
}

/// What the map is composed of, but for what is wanted by itself.
void MapRun::release_sources(int thread)
{
    if (thread == 0) {
        if (!wanted_.light) {
            normals_.reset();
        }
        if (!wanted_.occlusion) {
            parts.occlusion.reset();
        }
    }
}

void MapRun::post_process()
{
    on_one_thread([&] {
        if (parts.map != nullptr && share_rule_ == Shares::kTeam) {
            grade_map(parts.map.get(), shape_.rows, shape_.cols, options_);
        } else if (parts.map != nullptr) {
            PostProcess(parts.map.get(), shape_.rows, shape_.cols, options_);
        }
        report_.begin("Storing Results");
    });
}

void MapRun::store(int thread)
{
    MapShape const stored{shape_.rows, shape_.cols, target_.channels};
    auto const overhang = [this](std::ptrdiff_t last) {
        return is_left_out(last) ? Overhang::kWritten : Overhang::kOfNextTexel;
    };
    auto const put = [&](std::ptrdiff_t first, std::ptrdiff_t count, float3 const* colours,
                         float const* alphas) {
        store_block(colours, alphas, first, count, stored, target_.bytes, overhang(first + count));
    };
    for_own_texels(thread, [&](std::ptrdiff_t first, std::ptrdiff_t last) {
        if (parts.map != nullptr) {
            store_bytes(parts.map.get() + first, first, last, stored, target_.bytes, overhang(last));
        } else {
            for_composed_blocks(first, last, put);
        }
    });
}

} // namespace umbrixlib::detail
