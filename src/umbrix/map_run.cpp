// SPDX-License-Identifier: MIT
#include "umbrix/map_run_internal.h"

#include "boundary/platform.h"
#include "common/rounding.h"
#include "normals/filter_parts_internal.h"
#include "normals/filter_tables_internal.h"
#include "normals/height_to_normal_internal.h"
#include "umbrix/grading_internal.h"
#include "umbrix/texel_steps_internal.h"

#include <algorithm>
#include <omp.h>
#include <utility>

namespace umbrixlib::detail {

namespace {

RetainedBuffer<float> retained_heights;
RetainedBuffer<ray> retained_rays_a;
RetainedBuffer<ray> retained_rays_b;
RetainedBuffer<ray> retained_rays_c;

/// Full light; all of the sky open.
constexpr float3 kAll = {1.0f, 1.0f, 1.0f};

} // namespace

MapRun::MapRun(umbrix_options& options, KeptBuffers* kept, LayerBranch const& layers, MapSource const& source,
               MapShape shape, Shares shares, RunReport& report, Borders const& borders)
    : options_(options), kept_(kept), layers_(layers), source_(source), shape_(shape), share_rule_(shares),
      report_(report), borders_(borders),
      makes_light_(options.generate_normal || (!options.no_normal && !options.height_map)),
      makes_occlusion_(has_occlusion(options.calc_type)),
      decodes_normals_(!options.no_normal && !options.generate_normal && !options.height_map)
{
}

MapRun::~MapRun()
{
    retained_heights.keep(std::move(heights_));
    if (rays_a_.data != nullptr) {
        retained_rays_a.keep(std::move(rays_a_));
        retained_rays_b.keep(std::move(rays_b_));
        retained_rays_c.keep(std::move(rays_c_));
    }
}

bool MapRun::run(ByteTarget const& target, MapDemand const& wanted)
{
    target_ = target;
    wanted_ = wanted;
    make_buffers();
#pragma omp parallel
    {
#pragma omp single
        {
            int const team = omp_get_num_threads();
            shares_ = share_rule_ == Shares::kTeam ? team : omp_get_num_procs();
            meeting_.emplace(team);
        }
        run_stages(omp_get_thread_num());
    }
    if (thrown_ != nullptr) {
        std::rethrow_exception(thrown_);
    }
    if (target_.bytes != nullptr) {
        parts.map.reset();
    }
    if (wanted_.light && makes_light_) {
        parts.light = std::move(normals_);
    }
    if (!makes_light_) {
        parts.normals.reset();
    }
    if (!wanted_.occlusion || !makes_occlusion_) {
        parts.occlusion.reset();
    }
    normals_.reset();
    return !stopped_;
}

void MapRun::make_buffers()
{
    auto const texels = static_cast<std::size_t>(shape_.texels());
    normals_ = make_texel_array<float3>(texels);
    heights_ = retained_heights.take_to_overwrite(texels);
    platform::prefer_large_pages(heights_.data.get(), texels * sizeof(float));
    if (filters_heights()) {
        scratch_.reserve(texels);
        platform::prefer_large_pages(scratch_.data.get(), texels * sizeof(float));
    }
    spatial_table_ = std::make_unique<float[]>(spatial_table_size(options_.b_radius));
    if (keeps_buffers()) {
        kept_->make_normal_map(texels);
        kept_->make_height_copy(texels);
        kept_normals_ = options_.normal_map;
    } else if (wanted_.normals) {
        parts.normals = make_texel_array<float3>(texels);
        kept_normals_ = parts.normals.get();
    }
    if (wanted_.heights) {
        parts.heights = make_texel_array<float>(texels);
    }
    if (wanted_.source_heights) {
        parts.source_heights = make_texel_array<float>(texels);
    }
    if (target_.bytes == nullptr || grades_map(options_)) {
        parts.map = make_texel_array<float4>(texels);
    }
}

void MapRun::run_stages(int thread)
{
    clear_left_out_texels();
    if (options_.blend_height) {
        take_heights_of_layers(thread);
    } else {
        make_heights(thread);
    }
    if (ends_early()) {
        return;
    }
    keep_heights_before_filter(thread);
    filter_heights(thread);
    pre_process();
    if (ends_early()) {
        return;
    }
    keep_graded_heights(thread);
    if (options_.generate_normal) {
        generate_normals(thread);
    }
    if (decodes_normals_) {
        decode_normals(thread);
    }
    if (ends_early()) {
        return;
    }
    if (makes_light_) {
        convert_to_light(thread);
    } else if (keeps_buffers()) {
        keep_full_light(thread);
    }
#pragma omp barrier
    make_occlusion_map(thread);
    if (ends_early()) {
        return;
    }
    if (makes_occlusion_) {
        find_occlusion(thread);
    } else if (keeps_buffers()) {
        keep_no_occlusion(thread);
    }
    if (ends_early()) {
        return;
    }
    if (parts.map != nullptr) {
        compose_map(thread);
        release_sources(thread);
    }
    post_process();
    if (!ends_early() && target_.bytes != nullptr) {
        store(thread);
    }
}

/// Whether the run is to end here, the same for every thread.
bool MapRun::ends_early()
{
#pragma omp single
    stopped_ = thrown_ != nullptr || report_.stopping();
    bool const ends = stopped_;
    // Nobody asks again before all have read.
#pragma omp barrier
    return ends;
}

void MapRun::begin(int thread, char const* stage)
{
    if (thread == 0) {
        report_.begin(stage);
    }
}

/// What a share without a thread leaves is zero: buffers other than these two begin that way.
void MapRun::clear_left_out_texels()
{
    if (leaves_texels_out()) {
#pragma omp single
        for (Buffer<float>* const buffer : {&heights_, &scratch_}) {
            std::fill_n(buffer->data.get(), buffer->capacity, 0.0f);
        }
    }
}

void MapRun::make_heights(int thread)
{
    float* const heights = heights_.data.get();
    source_.samples.visit([&](auto const& samples) {
        for_own_texels(thread, [&](std::ptrdiff_t first, std::ptrdiff_t last) {
            for (std::ptrdiff_t i = first; i < last; ++i) {
                heights[i] = options_.height_map ? samples.mean(i) : samples.alpha_or_one(i);
            }
        });
    });
}

void MapRun::take_heights_of_layers(int thread)
{
    // No height is stretched before the range is known to all.
    on_one_thread([&] {
        blend_layer_heights(layers_.stack(), heights_, static_cast<std::size_t>(shape_.texels()));
        height_range_ = find_height_range(heights_.data.get(), shape_.texels());
    });
    if (thrown_ != nullptr) {
        return;
    }
    for_own_texels(thread, [&](std::ptrdiff_t first, std::ptrdiff_t last) {
        for (std::ptrdiff_t i = first; i < last; ++i) {
            heights_.data[i] = height_range_.stretched(heights_.data[i]);
        }
    });
}

void MapRun::keep_heights_before_filter(int thread)
{
    float* const kept = options_.preserve ? options_.height_copy : nullptr;
    for (float* const copy : {kept, parts.source_heights.get()}) {
        if (copy != nullptr) {
            float const* const heights = heights_.data.get();
            for_own_texels(thread, [&](std::ptrdiff_t first, std::ptrdiff_t last) {
                std::copy(heights + first, heights + last, copy + first);
            });
        }
    }
}

void MapRun::filter_heights(int thread)
{
    if (filters_heights()) {
        if (thread == 0) {
            report_.show("Bilateral Filtering");
        }
        if (has_share(thread)) {
            GenerateExp(options_.b_radius, spatial_table_.get(), thread, shares_);
            GenerateExp(kRangeSigma, range_table_, thread, shares_);
        }
#pragma omp barrier
        if (has_share(thread)) {
            run_filter(thread);
        }
#pragma omp barrier
#pragma omp single
        std::swap(heights_, scratch_);
    }
    if (thread == 0) {
        scratch_ = {};
        spatial_table_.reset();
    }
#pragma omp barrier
}

/// The share of @p thread in the filter, in parts between which a run that can be stopped looks.
void MapRun::run_filter(int thread)
{
    int const all_parts =
        report_.can_stop() ? filter_parts(shape_.rows, options_.b_radius, shares_) : shares_;
    for (int part = thread; part < all_parts && !report_.stopping(); part += shares_) {
        BilateralFilter(heights_.data.get(), scratch_.data.get(), shape_.rows, shape_.cols, options_.b_radius,
                        spatial_table_.get(), range_table_, part, all_parts);
    }
}

void MapRun::pre_process()
{
    on_one_thread([&] {
        if (share_rule_ == Shares::kTeam) {
            grade_heights(heights_.data.get(), shape_.rows, shape_.cols, options_);
        } else {
            PreProcess(heights_.data.get(), shape_.rows, shape_.cols, options_);
        }
    });
}

void MapRun::keep_graded_heights(int thread)
{
    if (parts.heights != nullptr) {
        for_own_texels(thread, [&](std::ptrdiff_t first, std::ptrdiff_t last) {
            std::copy(heights_.data.get() + first, heights_.data.get() + last, parts.heights.get() + first);
        });
    }
}

void MapRun::generate_normals(int thread)
{
    if (thread == 0) {
        report_.show("Generating Normal Map");
    }
    // HeightToNormal sets the text as well, on the thread that comes first.
#pragma omp barrier
    on_one_thread([&] {
        if (layers_.has_layers()) {
            layers_.stack().BlendLayers(target_normals());
        } else {
            make_normals_of(heights_.data.get(), target_normals(), shape_.rows, shape_.cols,
                            {options_.n_scale, options_.gaussian, 0.0f, options_.L_Detail, 0.0f, 0.0f},
                            report_, borders_);
        }
    });
}

void MapRun::decode_normals(int thread)
{
    begin(thread, "Retreving Normal Map");
    float3* const target = target_normals();
    if (options_.blend_height) {
        for_own_texels(thread, [&](std::ptrdiff_t first, std::ptrdiff_t last) {
            std::fill(target + first, target + last, decoded_normal({}, source_.coding));
        });
        return;
    }
    source_.samples.visit([&](auto const& samples) {
        for_own_texels(thread, [&](std::ptrdiff_t first, std::ptrdiff_t last) {
            for (std::ptrdiff_t i = first; i < last; ++i) {
                target[i] = decoded_normal(samples.colour(i), source_.coding);
            }
        });
    });
}

void MapRun::convert_to_light(int thread)
{
    begin(thread, "Normal -> Umbrix");
    if (kept_normals_ != nullptr) {
        for_own_texels(thread, [&](std::ptrdiff_t first, std::ptrdiff_t last) {
            std::copy(kept_normals_ + first, kept_normals_ + last, normals_.get() + first);
        });
    }
#pragma omp barrier
    if (has_share(thread)) {
        Normal2Umbrix(normals_.get(), shape_.rows, shape_.cols, options_.UmbrixMode, thread, shares_);
    }
}

void MapRun::keep_full_light(int thread)
{
    for_own_texels(thread, [&](std::ptrdiff_t first, std::ptrdiff_t last) {
        std::fill(kept_normals_ + first, kept_normals_ + last, kAll);
    });
}

void MapRun::make_occlusion_map(int thread)
{
    if (thread == 0) {
        try {
            auto const texels = static_cast<std::size_t>(shape_.texels());
            if (keeps_buffers()) {
                kept_->make_ao_map(texels);
            } else {
                parts.occlusion = make_texel_array<float3>(texels);
                options_.ao_map = parts.occlusion.get(); // the field keeps the address when the map goes
            }
            open_ = options_.ao_map;
        } catch (...) {
            thrown_ = std::current_exception();
        }
    }
}

void MapRun::keep_no_occlusion(int thread)
{
    for_own_texels(thread, [&](std::ptrdiff_t first, std::ptrdiff_t last) {
        std::fill(open_ + first, open_ + last, kAll);
    });
}

void MapRun::find_occlusion(int thread)
{
    begin(thread, "Height -> AO");
    float* const heights = heights_.data.get();
    for_own_texels(thread, [&](std::ptrdiff_t first, std::ptrdiff_t last) {
        for (std::ptrdiff_t i = first; i < last; ++i) {
            heights[i] = product(heights[i], options_.h_scale);
        }
    });
#pragma omp barrier
    on_one_thread([&] {
        std::size_t const room = 2 * static_cast<std::size_t>(std::max(options_.rays, 0));
        rays_a_ = retained_rays_a.take(room);
        rays_b_ = retained_rays_b.take(room);
        rays_c_ = retained_rays_c.take(room);
        ray* a = rays_a_.data.get();
        ray* b = rays_b_.data.get();
        ray* c = rays_c_.data.get();
        GenerateRays(shape_.rows, shape_.cols, a, b, c, options_.rays, options_.theta_limit,
                     options_.alpha_limit);
        Height2DirectionalAO(open_, heights, shape_.rows, shape_.cols, a, b, c, options_.rays,
                             options_.h_scale, options_.radius, options_.tile, options_.h_tile,
                             options_.v_tile, report_.kernel_progress());
    });
}

} // namespace umbrixlib::detail
