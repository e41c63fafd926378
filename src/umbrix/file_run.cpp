// SPDX-License-Identifier: MIT
#include "umbrix/file_run_internal.h"

#include "foundation/rounding.h"
#include "normals/filter_tables_internal.h"
#include "normals/height_to_normal.h"
#include "umbrix/file_frame_internal.h"
#include "umbrix/grading.h"
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

} // namespace

FileRun::FileRun(umbrix_options& options, LayerBranch const& layers, int thread_count, std::string* status,
                 int* progress)
    : options_(options), layers_(layers), thread_count_(thread_count), status_(status), progress_(progress)
{
}

FileRun::~FileRun()
{
    retained_heights.keep(std::move(heights_));
    if (rays_a_.data != nullptr) {
        retained_rays_a.keep(std::move(rays_a_));
        retained_rays_b.keep(std::move(rays_b_));
        retained_rays_c.keep(std::move(rays_c_));
    }
}

void FileRun::fetch_image(MapShape shape)
{
    shape_ = shape;
    auto const texels = static_cast<std::size_t>(shape.texels());
    result_ = std::make_unique<float4[]>(texels);
    normals_ = std::make_unique<float3[]>(texels);
    heights_ = retained_heights.take(texels);
    scratch_.reserve(texels);
    pixels_ = make_image_bytes(texels, shape.channels);
    spatial_table_ = std::make_unique<float[]>(spatial_table_size(options_.b_radius));
    if (options_.keep_buffers) {
        options_.normal_map = new float3[texels]();
        options_.height_copy = new float[texels]();
    }
    if (options_.blend_height) {
        return;
    }
    PixelFormat const format = shape.channels == 1  ? PixelFormat::kOneByte
                               : shape.channels < 4 ? PixelFormat::kRgb
                                                    : PixelFormat::kRgba;
    copy_pixels({shape.cols, shape.rows}, format, pixels_.get());
}

void FileRun::run(bool reverse_rows)
{
    bool const normals_from_image = !options_.no_normal && !options_.generate_normal && !options_.height_map;
    bool const light = options_.generate_normal || (!options_.no_normal && !options_.height_map);
    bool const occlusion = has_occlusion(options_.calc_type);

#pragma omp parallel
    {
        int const thread = omp_get_thread_num();
        if (options_.blend_height) {
            take_heights_of_layers(thread);
        } else {
            split_colours_and_heights(thread);
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
        if (light) {
            convert_to_light(thread);
        } else {
            set_full_light(thread);
        }
#pragma omp barrier
        make_occlusion_map(thread);
#pragma omp barrier
        if (occlusion) {
            multiply_occlusion(thread);
        } else {
            set_no_occlusion(thread);
        }
#pragma omp barrier
        release_unkept(thread);
#pragma omp barrier
        post_process();
        store(thread, reverse_rows);
    }
    result_.reset();
}

void FileRun::hand_over_image()
{
    hand_over_bytes(shape_, pixels_.get());
    pixels_.reset();
}

void FileRun::announce(int thread, char const* stage)
{
    if (thread == 0) {
        *status_ = stage;
        *progress_ = 0;
    }
}

void FileRun::split_colours_and_heights(int thread)
{
    int const channels = shape_.channels;
    for_own_texels(thread, [&](std::ptrdiff_t i) {
        unsigned char const* const bytes = pixels_.get() + i * channels;
        float4& texel = result_[i];
        if (channels > 1) {
            set_colour(texel, {from_byte(bytes[0]), from_byte(bytes[1]), from_byte(bytes[2])});
        } else {
            float const grey = from_byte(pixels_[i]);
            set_colour(texel, {grey, grey, grey});
        }
        texel.w = channels == 4 ? from_byte(bytes[3]) : 1.0f;
        heights_.data[i] =
            options_.height_map ? narrow((wide(texel.x) + wide(texel.y) + wide(texel.z)) / 3.0) : texel.w;
    });
}

void FileRun::take_heights_of_layers(int thread)
{
    // Behind the single stage is a barrier: no height is stretched before the range is known to all.
#pragma omp single
    {
        blend_layer_heights(layers_.stack(), heights_, static_cast<std::size_t>(shape_.texels()));
        height_range_ = find_height_range(heights_.data.get(), shape_.texels());
    }
    for_own_texels(thread,
                   [&](std::ptrdiff_t i) { heights_.data[i] = height_range_.stretched(heights_.data[i]); });
}

void FileRun::keep_heights(int thread)
{
    if (options_.preserve && options_.height_copy != nullptr) {
        for_own_texels(thread, [&](std::ptrdiff_t i) { options_.height_copy[i] = heights_.data[i]; });
    }
}

void FileRun::filter_heights(int thread)
{
    if (options_.b_radius >= 1.0f) {
        if (thread == 0) {
            *status_ = "Bilateral Filtering";
        }
        GenerateExp(options_.b_radius, spatial_table_.get(), thread, thread_count_);
        GenerateExp(kRangeSigma, range_table_, thread, thread_count_);
#pragma omp barrier
        BilateralFilter(heights_.data.get(), scratch_.data.get(), shape_.rows, shape_.cols, options_.b_radius,
                        spatial_table_.get(), range_table_, thread, thread_count_);
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

void FileRun::pre_process()
{
#pragma omp single
    PreProcess(heights_.data.get(), shape_.rows, shape_.cols, options_);
}

void FileRun::generate_normals(int thread)
{
    if (thread == 0) {
        *status_ = "Generating Normal Map";
    }
    // HeightToNormal sets the text as well, on the thread that comes first.
#pragma omp barrier
#pragma omp single
    {
        if (layers_.has_layers()) {
            layers_.stack().BlendLayers(target_normals());
        } else {
            HeightToNormal(heights_.data.get(), target_normals(), shape_.rows, shape_.cols, options_.n_scale,
                           options_.gaussian, 0.0f, options_.normal_flag_1, options_.mode, options_.L_Detail,
                           options_.normal_flag_2, 0.0f, 0.0f, options_.normal_flag_3, status_, progress_);
        }
    }
}

void FileRun::decode_normals(int thread)
{
    announce(thread, "Retreving Normal Map");
    float3* const target = target_normals();
    for_own_texels(thread, [&](std::ptrdiff_t i) { target[i] = decoded_normal(result_[i]); });
}

void FileRun::convert_to_light(int thread)
{
    announce(thread, "Normal -> Umbrix");
    if (options_.keep_buffers) {
        for_own_texels(thread, [&](std::ptrdiff_t i) { normals_[i] = options_.normal_map[i]; });
    }
    Normal2Umbrix(normals_.get(), shape_.rows, shape_.cols, options_.UmbrixMode, thread, thread_count_);
    for_own_texels(thread, [&](std::ptrdiff_t i) { set_colour(result_[i], normals_[i]); });
}

void FileRun::set_full_light(int thread)
{
    constexpr float3 kFull = {1.0f, 1.0f, 1.0f};
    for_own_texels(thread, [&](std::ptrdiff_t i) {
        set_colour(result_[i], kFull);
        if (options_.keep_buffers) {
            options_.normal_map[i] = kFull;
        }
    });
}

void FileRun::make_occlusion_map(int thread)
{
    if (thread == 0) {
        if (!options_.keep_buffers) {
            normals_.reset();
        }
        options_.ao_map = new float3[static_cast<std::size_t>(shape_.texels())]();
    }
}

void FileRun::set_no_occlusion(int thread)
{
    for_own_texels(thread, [&](std::ptrdiff_t i) { options_.ao_map[i] = {1.0f, 1.0f, 1.0f}; });
}

void FileRun::multiply_occlusion(int thread)
{
    announce(thread, "Height -> AO");
    float* const heights = heights_.data.get();
    for_own_texels(thread, [&](std::ptrdiff_t i) { heights[i] = product(heights[i], options_.h_scale); });
    if (thread == 0) {
        std::size_t const room = 2 * static_cast<std::size_t>(std::max(options_.rays, 0));
        rays_a_ = retained_rays_a.take(room);
        rays_b_ = retained_rays_b.take(room);
        rays_c_ = retained_rays_c.take(room);
    }
#pragma omp barrier
#pragma omp single
    {
        ray* a = rays_a_.data.get();
        ray* b = rays_b_.data.get();
        ray* c = rays_c_.data.get();
        GenerateRays(shape_.rows, shape_.cols, a, b, c, options_.rays, options_.theta_limit,
                     options_.alpha_limit);
        Height2DirectionalAO(options_.ao_map, heights, shape_.rows, shape_.cols, a, b, c, options_.rays,
                             options_.h_scale, options_.radius, options_.tile, options_.h_tile,
                             options_.v_tile, progress_);
    }
    for_own_texels(thread, [&](std::ptrdiff_t i) {
        multiply_colour(result_[i], options_.ao_map[i]);
        result_[i].w = options_.preserve ? heights[i] : 1.0f;
    });
}

void FileRun::release_unkept(int thread)
{
    if (thread != 0) {
        return;
    }
    if (options_.keep_buffers) {
        normals_.reset();
    } else {
        // The field keeps the address of the released map.
        delete[] options_.ao_map;
    }
}

void FileRun::post_process()
{
#pragma omp single
    {
        PostProcess(result_.get(), shape_.rows, shape_.cols, options_);
        *status_ = "Storing Results";
        *progress_ = 0;
        if (shape_.channels == 1) {
            // The bytes of a grey picture have room for one channel; the map has three. All threads take the
            // new buffer: one that kept the old bytes would leave its texels out.
            shape_.channels = 3;
            pixels_ = make_image_bytes(static_cast<std::size_t>(shape_.texels()), shape_.channels);
        }
    }
}

void FileRun::store(int thread, bool reverse_rows)
{
    if (reverse_rows) {
#pragma omp single
        store_bytes_reversed(result_.get(), shape_, RowsFrom::kWidth, pixels_.get(), progress_);
    } else {
        store_bytes(result_.get(), shape_, pixels_.get(), thread, thread_count_);
    }
}

} // namespace umbrixlib::detail
