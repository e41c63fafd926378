// SPDX-License-Identifier: MIT
#include "umbrix/gpu_map_run_internal.h"

#include "boundary/texture_kernels.h"
#include "common/rounding.h"
#include "normals/filter_tables_internal.h"
#include "umbrix/file_frame_internal.h"
#include "umbrix/layer_heights_internal.h"
#include "umbrix/texel_steps_internal.h"

#include <utility>

namespace umbrixlib::detail {

namespace {

RetainedBuffer<float> retained_heights;

float inverse_of_byte(unsigned char byte)
{
    return narrow(1.0 - byte / 255.0);
}

float inverse_mean(float4 const& colour)
{
    return narrow(1.0 - (wide(colour.x) + wide(colour.y) + wide(colour.z)) / 3.0);
}

} // namespace

GpuMapRun::GpuMapRun(GPU_opt gpu, umbrix_options& options, KeptBuffers& kept, LayerBranch const& layers,
                       MapShape shape, std::string* status, int* progress)
    : gpu_(gpu), options_(options), kept_(kept), layers_(layers), shape_(shape), status_(status),
      progress_(progress)
{
}

GpuMapRun::~GpuMapRun()
{
    retained_heights.keep(std::move(heights_));
}

void GpuMapRun::fetch_image()
{
    auto const texels = static_cast<std::size_t>(shape_.texels());
    result_ = make_large_array<float4>(texels);
    normals_ = make_large_array<float3>(texels);
    heights_ = retained_heights.take_to_overwrite(texels);
    platform::prefer_large_pages(heights_.data.get(), texels * sizeof(float));
    kept_.make_height_copy(texels);
    pixels_ = make_image_bytes(texels, shape_.channels);
    PixelFormat const format = shape_.channels < 4 ? PixelFormat::kRgb : PixelFormat::kRgba;
    copy_pixels({shape_.cols, shape_.rows}, format, pixels_.get());
}

void GpuMapRun::run(bool reverse_rows)
{
    // Contract: `no_normal` wins over `generate_normal`; as in UmbrixFile, the other way round is expected.
    // Test: UmbrixFileGpuCalls.ComeInOrderForEveryCombinationOfTheOptions
    bool const normals_from_heights = options_.generate_normal && !options_.no_normal;
    bool const normals_from_image = !options_.no_normal && !options_.generate_normal && !options_.height_map;
    bool const light = !options_.no_normal && (options_.generate_normal || !options_.height_map);

    if (options_.blend_height) {
        take_heights_of_layers();
    } else {
        split_colours_and_heights();
    }
    // Contract: the text shows whether a filter runs or not; with a filter only is expected. Test:
    // UmbrixFileGpuCalls.TheTextOfTheFilterShowsWithoutAFilterToo
    *status_ = "Bilateral Filtering";
    if (options_.b_radius >= 1.0f) {
        filter_heights();
    }
    keep_heights();
    pre_process_group();
    if (normals_from_heights && layers_.has_layers()) {
        layers_.stack().BlendLayers(normals_.get());
    } else if (normals_from_heights) {
        normals_group();
    } else {
        set_flat_normals();
    }
    if (normals_from_image) {
        decode_normals();
    }
    if (options_.keep_buffers) {
        keep_normals();
    }
    if (light) {
        convert_to_light();
    } else {
        set_full_light();
    }
    make_occlusion_map();
    if (has_occlusion(options_.calc_type)) {
        multiply_occlusion();
    } else {
        set_no_occlusion();
    }
    release_unkept();
    post_process_group();
    announce("Storing Results");
    store(reverse_rows);
    result_.reset();
}

void GpuMapRun::hand_over_image()
{
    hand_over_bytes(shape_, pixels_.get());
    pixels_.reset();
}

void GpuMapRun::announce(char const* stage)
{
    *status_ = stage;
    *progress_ = 0;
}

void GpuMapRun::split_colours_and_heights()
{
    int const channels = shape_.channels;
    for_all_texels([&](std::ptrdiff_t i) {
        unsigned char const* const bytes = pixels_.get() + i * channels;
        float4& texel = result_[i];
        texel = {from_byte(bytes[0]), from_byte(bytes[1]), from_byte(bytes[2]), 1.0f};
        float height_of_alpha = 1.0f;
        if (channels == 4) {
            texel.w = from_byte(bytes[3]);
            height_of_alpha = inverse_of_byte(bytes[3]);
        }
        heights_.data[i] = options_.height_map ? inverse_mean(texel) : height_of_alpha;
    });
}

void GpuMapRun::take_heights_of_layers()
{
    blend_layer_heights(layers_.stack(), heights_, static_cast<std::size_t>(shape_.texels()));
    HeightRange const range = find_height_range(heights_.data.get(), shape_.texels());
    for_all_texels([&](std::ptrdiff_t i) { heights_.data[i] = range.stretched(heights_.data[i]); });
}

void GpuMapRun::filter_heights()
{
    auto const spatial = std::make_unique<float[]>(spatial_table_size(options_.b_radius));
    float range[kRangeTableSize] = {};
    Buffer<float> filtered;
    filtered.reserve(static_cast<std::size_t>(shape_.texels()));
    GenerateExp(options_.b_radius, spatial.get());
    GenerateExp(kRangeSigma, range);
    BilateralFilter(heights_.data.get(), filtered.data.get(), shape_.rows, shape_.cols, options_.b_radius,
                    spatial.get(), range);
    heights_ = std::move(filtered);
}

void GpuMapRun::keep_heights()
{
    for_all_texels(
        [&](std::ptrdiff_t i) { options_.height_copy[i] = options_.preserve ? heights_.data[i] : 1.0f; });
}

void GpuMapRun::set_flat_normals()
{
    for_all_texels([&](std::ptrdiff_t i) { normals_[i] = {0.0f, 0.0f, 1.0f}; });
}

void GpuMapRun::decode_normals()
{
    announce("Retreving Normal Map");
    for_all_texels([&](std::ptrdiff_t i) { normals_[i] = decoded_normal(result_[i]); });
}

void GpuMapRun::keep_normals()
{
    auto const texels = static_cast<std::size_t>(shape_.texels());
    kept_.make_normal_map(texels);
    converted_ = make_large_array<float3>(texels);
    for_all_texels([&](std::ptrdiff_t i) { options_.normal_map[i] = normals_[i]; });
}

void GpuMapRun::convert_to_light()
{
    announce("Normal -> Umbrix");
    float3* const light = options_.keep_buffers ? converted_.get() : normals_.get();
    light_group(options_.keep_buffers ? options_.normal_map : normals_.get(), light);
    for_all_texels([&](std::ptrdiff_t i) { set_colour(result_[i], light[i]); });
}

void GpuMapRun::set_full_light()
{
    for_all_texels([&](std::ptrdiff_t i) { set_colour(result_[i], {1.0f, 1.0f, 1.0f}); });
}

void GpuMapRun::make_occlusion_map()
{
    normals_.reset();
    auto const texels = static_cast<std::size_t>(shape_.texels());
    if (options_.keep_buffers) {
        kept_.make_ao_map(texels);
    } else {
        occlusion_ = make_large_array<float3>(texels);
        options_.ao_map = occlusion_.get(); // the field keeps the address when the map is released
    }
}

void GpuMapRun::set_no_occlusion()
{
    if (options_.keep_buffers) {
        for_all_texels([&](std::ptrdiff_t i) { options_.ao_map[i] = {1.0f, 1.0f, 1.0f}; });
    }
}

void GpuMapRun::multiply_occlusion()
{
    announce("Height -> AO");
    occlusion_group();
    for_all_texels([&](std::ptrdiff_t i) {
        multiply_colour(result_[i], options_.ao_map[i]);
        result_[i].w = options_.preserve ? heights_.data[i] : 1.0f;
    });
}

void GpuMapRun::release_unkept()
{
    converted_.reset();
    occlusion_.reset();
}

void GpuMapRun::store(bool reverse_rows)
{
    if (reverse_rows) {
        store_bytes_reversed(result_.get(), shape_, RowsFrom::kHeight, pixels_.get(), progress_);
    } else {
        store_bytes(result_.get(), shape_, pixels_.get());
    }
}

void GpuMapRun::pre_process_group()
{
    float* const heights = heights_.data.get();
    SetDevice(gpu_.device);
    SetDest(heights, shape_.rows, shape_.cols);
    PreProcess_GPU(gpu_, heights, shape_.rows, shape_.cols, options_);
    GetDest(heights, shape_.rows, shape_.cols);
}

void GpuMapRun::normals_group()
{
    SetDevice(gpu_.device);
    SetDest(normals_.get(), shape_.rows, shape_.cols);
    HeightToNormal_GPU(gpu_, heights_.data.get(), shape_.rows, shape_.cols, options_.n_scale,
                       options_.gaussian, options_.L_Detail, 0.0f, status_, progress_);
    GetDest(normals_.get(), shape_.rows, shape_.cols);
}

void GpuMapRun::light_group(float3* uploaded, float3* downloaded)
{
    SetDevice(gpu_.device);
    SetDest(uploaded, shape_.rows, shape_.cols);
    UmbrixNormal_GPU(gpu_, normals_.get(), static_cast<int>(options_.UmbrixMode), shape_.rows, shape_.cols);
    GetDest(downloaded, shape_.rows, shape_.cols);
    DeleteDest();
    DeleteSrc();
}

void GpuMapRun::occlusion_group()
{
    float* const heights = heights_.data.get();
    SetDevice(gpu_.device);
    SetDest(options_.ao_map, shape_.rows, shape_.cols);
    SetSrc(options_.ao_map, shape_.rows, shape_.cols);
    SetSrc(heights, shape_.rows, shape_.cols);
    SetDest(heights, shape_.rows, shape_.cols);
    DirectionalAO_GPU(heights, shape_.rows, shape_.cols, options_.rays, options_.alpha_limit,
                      options_.theta_limit, options_.radius, gpu_.device, options_.h_tile, options_.v_tile,
                      !gpu_.ao_flag, gpu_.ao_value, progress_);
    GetDest(options_.ao_map, shape_.rows, shape_.cols);
    DeleteDest();
    DeleteSrc();
}

void GpuMapRun::post_process_group()
{
    // The device of the group before still holds.
    SetDest(result_.get(), shape_.rows, shape_.cols);
    PostProcess_GPU(gpu_, result_.get(), shape_.rows, shape_.cols, options_);
    GetDest(result_.get(), shape_.rows, shape_.cols);
    DeleteDest();
    DeleteSrc();
}

} // namespace umbrixlib::detail
