// SPDX-License-Identifier: MIT
#include "umbrix/map_run_internal.h"

#include "common/rounding.h"
#include "normals/filter_tables_internal.h"
#include "normals/height_to_normal.h"
#include "umbrix/file_frame_internal.h"
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

MapRun::MapRun(umbrix_options& options, KeptBuffers& kept, LayerBranch const& layers, int thread_count,
                 std::string* status, int* progress)
    : options_(options), kept_(kept), layers_(layers), thread_count_(thread_count), status_(status),
      progress_(progress),
      makes_light_(options.generate_normal || (!options.no_normal && !options.height_map)),
      makes_occlusion_(has_occlusion(options.calc_type))
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

void MapRun::fetch_image(MapShape shape)
{
    shape_ = shape;
    auto const texels = static_cast<std::size_t>(shape.texels());
    normals_ = make_large_array<float3>(texels);
    heights_ = retained_heights.take_to_overwrite(texels);
    platform::prefer_large_pages(heights_.data.get(), texels * sizeof(float));
    if (filters_heights()) {
        scratch_.reserve(texels);
        platform::prefer_large_pages(scratch_.data.get(), texels * sizeof(float));
    }
    pixels_ = make_image_bytes(texels, shape.channels);
    spatial_table_ = std::make_unique<float[]>(spatial_table_size(options_.b_radius));
    if (options_.keep_buffers) {
        kept_.make_normal_map(texels);
        kept_.make_height_copy(texels);
    }
    if (options_.blend_height) {
        return;
    }
    PixelFormat const format = shape.channels == 1  ? PixelFormat::kOneByte
                               : shape.channels < 4 ? PixelFormat::kRgb
                                                    : PixelFormat::kRgba;
    copy_pixels({shape.cols, shape.rows}, format, pixels_.get());
}

void MapRun::run(bool reverse_rows)
{
    bool const normals_from_image = !options_.no_normal && !options_.generate_normal && !options_.height_map;
    bool const needs_whole_map = reverse_rows || grades_map(options_);
    if (needs_whole_map) {
        result_ = make_large_array<float4>(static_cast<std::size_t>(shape_.texels()));
    }

#pragma omp parallel
    {
        int const thread = omp_get_thread_num();
#pragma omp single
        meeting_.emplace(omp_get_num_threads());
        clear_left_out_texels();
        if (options_.blend_height) {
            take_heights_of_layers(thread);
        } else {
            make_heights(thread);
        }
#pragma omp barrier
        keep_heights(thread);
        filter_heights(thread);
        pre_process();
        if (options_.generate_normal) {
            generate_normals(thread);
        }
        if (normals_from_image) {
            decode_normals(thread);
        }
        if (makes_light_) {
            convert_to_light(thread);
        } else if (options_.keep_buffers) {
            keep_full_light(thread);
        }
#pragma omp barrier
        make_occlusion_map(thread);
#pragma omp barrier
        if (makes_occlusion_) {
            find_occlusion(thread);
        } else if (options_.keep_buffers) {
            keep_no_occlusion(thread);
        }
        if (needs_whole_map) {
            compose_map(thread);
            release_sources(thread);
        }
        post_process();
        if (reverse_rows) {
#pragma omp single
            store_bytes_reversed(result_.get(), shape_, RowsFrom::kWidth, pixels_.get(), progress_);
        } else {
            store(thread);
        }
    }
    result_.reset();
    release_sources(0);
}

void MapRun::hand_over_image()
{
    hand_over_bytes(shape_, pixels_.get());
    pixels_.reset();
}

void MapRun::announce(int thread, char const* stage)
{
    if (thread == 0) {
        *status_ = stage;
        *progress_ = 0;
    }
}

/// What a share without a thread leaves is zero: buffers other than these two begin that way.
void MapRun::clear_left_out_texels()
{
    if (!is_whole_team()) {
#pragma omp single
        for (Buffer<float>* const buffer : {&heights_, &scratch_}) {
            std::fill_n(buffer->data.get(), buffer->capacity, 0.0f);
        }
    }
}

void MapRun::make_heights(int thread)
{
    int const channels = std::max(shape_.channels, 1);
    unsigned char const* const bytes = pixels_.get();
    float* const heights = heights_.data.get();
    for_own_texels(thread, [&](std::ptrdiff_t first, std::ptrdiff_t last) {
        if (options_.height_map) {
            int const second = channels > 1 ? 1 : 0;
            for (std::ptrdiff_t i = first; i < last; ++i) {
                unsigned char const* const b = bytes + i * channels;
                heights[i] = mean_of_bytes(b[0], b[second], b[2 * second]);
            }
        } else {
            for (std::ptrdiff_t i = first; i < last; ++i) {
                heights[i] = alpha(i);
            }
        }
    });
}

void MapRun::take_heights_of_layers(int thread)
{
    // No height is stretched before the range is known to all.
    on_one_thread([&] {
        blend_layer_heights(layers_.stack(), heights_, static_cast<std::size_t>(shape_.texels()));
        height_range_ = find_height_range(heights_.data.get(), shape_.texels());
    });
    for_own_texels(thread, [&](std::ptrdiff_t first, std::ptrdiff_t last) {
        for (std::ptrdiff_t i = first; i < last; ++i) {
            heights_.data[i] = height_range_.stretched(heights_.data[i]);
        }
    });
}

void MapRun::keep_heights(int thread)
{
    if (options_.preserve && options_.height_copy != nullptr) {
        float const* const heights = heights_.data.get();
        for_own_texels(thread, [&](std::ptrdiff_t first, std::ptrdiff_t last) {
            std::copy(heights + first, heights + last, options_.height_copy + first);
        });
    }
}

void MapRun::filter_heights(int thread)
{
    if (filters_heights()) {
        if (thread == 0) {
            *status_ = "Bilateral Filtering";
        }
        if (has_share(thread)) {
            GenerateExp(options_.b_radius, spatial_table_.get(), thread, thread_count_);
            GenerateExp(kRangeSigma, range_table_, thread, thread_count_);
        }
#pragma omp barrier
        if (has_share(thread)) {
            BilateralFilter(heights_.data.get(), scratch_.data.get(), shape_.rows, shape_.cols,
                            options_.b_radius, spatial_table_.get(), range_table_, thread, thread_count_);
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

void MapRun::pre_process()
{
    on_one_thread([&] { PreProcess(heights_.data.get(), shape_.rows, shape_.cols, options_); });
}

void MapRun::generate_normals(int thread)
{
    if (thread == 0) {
        *status_ = "Generating Normal Map";
    }
    // HeightToNormal sets the text as well, on the thread that comes first.
#pragma omp barrier
    on_one_thread([&] {
        if (layers_.has_layers()) {
            layers_.stack().BlendLayers(target_normals());
        } else {
            HeightToNormal(heights_.data.get(), target_normals(), shape_.rows, shape_.cols, options_.n_scale,
                           options_.gaussian, 0.0f, options_.normal_flag_1, options_.mode, options_.L_Detail,
                           options_.normal_flag_2, 0.0f, 0.0f, options_.normal_flag_3, status_, progress_);
        }
    });
}

void MapRun::decode_normals(int thread)
{
    announce(thread, "Retreving Normal Map");
    float3* const target = target_normals();
    int const channels = std::max(shape_.channels, 1);
    int const second = channels > 1 ? 1 : 0;
    for_own_texels(thread, [&](std::ptrdiff_t first, std::ptrdiff_t last) {
        for (std::ptrdiff_t i = first; i < last; ++i) {
            unsigned char const* const b = pixels_.get() + i * channels;
            target[i] =
                decoded_normal({from_byte(b[0]), from_byte(b[second]), from_byte(b[2 * second]), 1.0f});
        }
    });
}

void MapRun::convert_to_light(int thread)
{
    announce(thread, "Normal -> Umbrix");
    if (options_.keep_buffers) {
        for_own_texels(thread, [&](std::ptrdiff_t first, std::ptrdiff_t last) {
            std::copy(options_.normal_map + first, options_.normal_map + last, normals_.get() + first);
        });
    }
#pragma omp barrier
    if (has_share(thread)) {
        Normal2Umbrix(normals_.get(), shape_.rows, shape_.cols, options_.UmbrixMode, thread, thread_count_);
    }
}

void MapRun::keep_full_light(int thread)
{
    for_own_texels(thread, [&](std::ptrdiff_t first, std::ptrdiff_t last) {
        std::fill(options_.normal_map + first, options_.normal_map + last, kAll);
    });
}

void MapRun::make_occlusion_map(int thread)
{
    if (thread == 0) {
        auto const texels = static_cast<std::size_t>(shape_.texels());
        if (options_.keep_buffers) {
            kept_.make_ao_map(texels);
        } else {
            occlusion_ = make_large_array<float3>(texels);
            options_.ao_map = occlusion_.get(); // the field keeps the address when the map is released
        }
    }
}

void MapRun::keep_no_occlusion(int thread)
{
    for_own_texels(thread, [&](std::ptrdiff_t first, std::ptrdiff_t last) {
        std::fill(options_.ao_map + first, options_.ao_map + last, kAll);
    });
}

void MapRun::find_occlusion(int thread)
{
    announce(thread, "Height -> AO");
    float* const heights = heights_.data.get();
    for_own_texels(thread, [&](std::ptrdiff_t first, std::ptrdiff_t last) {
        for (std::ptrdiff_t i = first; i < last; ++i) {
            heights[i] = product(heights[i], options_.h_scale);
        }
    });
    if (thread == 0) {
        std::size_t const room = 2 * static_cast<std::size_t>(std::max(options_.rays, 0));
        rays_a_ = retained_rays_a.take(room);
        rays_b_ = retained_rays_b.take(room);
        rays_c_ = retained_rays_c.take(room);
    }
#pragma omp barrier
    on_one_thread([&] {
        ray* a = rays_a_.data.get();
        ray* b = rays_b_.data.get();
        ray* c = rays_c_.data.get();
        GenerateRays(shape_.rows, shape_.cols, a, b, c, options_.rays, options_.theta_limit,
                     options_.alpha_limit);
        Height2DirectionalAO(options_.ao_map, heights, shape_.rows, shape_.cols, a, b, c, options_.rays,
                             options_.h_scale, options_.radius, options_.tile, options_.h_tile,
                             options_.v_tile, progress_);
    });
}

/// The image's alpha. The bytes of a run on layers' heights were never fetched.
float MapRun::alpha(std::ptrdiff_t texel) const
{
    if (options_.blend_height) {
        return 0.0f;
    }
    return shape_.channels == 4 ? from_byte(pixels_[static_cast<std::size_t>(4 * texel + 3)]) : 1.0f;
}

/// @p count texels of the map before its grading, from @p first on.
void MapRun::compose(std::ptrdiff_t first, std::ptrdiff_t count, float3* colours, float* alphas) const
{
    float3 const* const light = normals_.get() + first;
    float3 const* const open = options_.ao_map + first;
    if (makes_light_ && makes_occlusion_) {
        for (std::ptrdiff_t i = 0; i < count; ++i) {
            colours[i] = product(light[i], open[i]);
        }
    } else if (makes_light_ || makes_occlusion_) {
        std::copy_n(makes_light_ ? light : open, count, colours);
    } else {
        std::fill_n(colours, count, kAll);
    }
    if (makes_occlusion_ && options_.preserve) {
        std::copy_n(heights_.data.get() + first, count, alphas);
    } else if (makes_occlusion_) {
        std::fill_n(alphas, count, 1.0f);
    } else {
        for (std::ptrdiff_t i = 0; i < count; ++i) {
            alphas[i] = alpha(first + i);
        }
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
        float4* const texels = result_.get() + first;
        for (std::ptrdiff_t i = 0; i < count; ++i) {
            texels[i] = {colours[i].x, colours[i].y, colours[i].z, alphas[i]};
        }
    };
    for_own_texels(thread,
                   [&](std::ptrdiff_t first, std::ptrdiff_t last) { for_composed_blocks(first, last, put); });
#pragma omp barrier
}

/// What the map is composed of.
void MapRun::release_sources(int thread)
{
    if (thread == 0) {
        normals_.reset();
        occlusion_.reset();
    }
}

void MapRun::post_process()
{
    on_one_thread([&] {
        if (result_ != nullptr) {
            PostProcess(result_.get(), shape_.rows, shape_.cols, options_);
        }
        *status_ = "Storing Results";
        *progress_ = 0;
        if (shape_.channels == 1) {
            // The bytes of a grey picture have room for one channel; the map has three. All threads take the
            // new buffer: one that kept the old bytes would leave its texels out.
            shape_.channels = 3;
            pixels_ = make_image_bytes(static_cast<std::size_t>(shape_.texels()), shape_.channels);
        }
    });
}

void MapRun::store(int thread)
{
    auto const put = [this](std::ptrdiff_t first, std::ptrdiff_t count, float3 const* colours,
                            float const* alphas) {
        store_block(colours, alphas, first, count, shape_, pixels_.get(),
                    is_left_out(first + count) ? Overhang::kWritten : Overhang::kOfNextTexel);
    };
    for_own_texels(thread, [&](std::ptrdiff_t first, std::ptrdiff_t last) {
        if (result_ != nullptr) {
            store_bytes(result_.get() + first, first, last, shape_, pixels_.get(),
                        is_left_out(last) ? Overhang::kWritten : Overhang::kOfNextTexel);
        } else {
            for_composed_blocks(first, last, put);
        }
    });
}

} // namespace umbrixlib::detail
