// SPDX-License-Identifier: MIT
#include "umbrix/gpu_map_run_internal.h"

#include "boundary/platform.h"
#include "boundary/texture_kernels.h"
#include "common/rounding.h"
#include "normals/filter_parts_internal.h"
#include "normals/filter_tables_internal.h"
#include "normals/open_borders_internal.h"
#include "umbrix/layer_heights_internal.h"
#include "umbrix/texel_steps_internal.h"

#include <utility>

namespace umbrixlib::detail {

namespace {

RetainedBuffer<float> retained_heights;

float inverse_mean(float3 const& colour)
{
    return narrow(1.0 - (wide(colour.x) + wide(colour.y) + wide(colour.z)) / 3.0);
}

} // namespace

GpuMapRun::GpuMapRun(GPU_opt gpu, umbrix_options& options, KeptBuffers* kept, LayerBranch const& layers,
                     MapSource const& source, MapShape shape, RunReport& report, Borders const& borders)
    : gpu_(gpu), options_(options), kept_(kept), layers_(layers), source_(source), shape_(shape),
      report_(report), borders_(borders)
{
}

GpuMapRun::~GpuMapRun()
{
    retained_heights.keep(std::move(heights_));
}

bool GpuMapRun::run(ByteTarget const& target, MapDemand const& wanted)
{
    wanted_ = wanted;
    make_buffers();
    if (!run_stages()) {
        DeleteDest();
        DeleteSrc();
        return false;
    }
    if (target.bytes != nullptr) {
        store_bytes(parts.map.get(), {shape_.rows, shape_.cols, target.channels}, target.bytes);
        parts.map.reset();
    }
    return true;
}

void GpuMapRun::make_buffers()
{
    auto const texels = static_cast<std::size_t>(shape_.texels());
    parts.map = make_texel_array<float4>(texels);
    normals_ = make_texel_array<float3>(texels);
    heights_ = retained_heights.take_to_overwrite(texels);
    platform::prefer_large_pages(heights_.data.get(), texels * sizeof(float));
    if (kept_ != nullptr) {
        kept_->make_height_copy(texels);
    }
}

/// @return False if the run was stopped.
bool GpuMapRun::run_stages()
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
    report_.show("Bilateral Filtering");
    if (options_.b_radius >= 1.0f) {
        filter_heights();
    }
    if (report_.stopping()) {
        return false;
    }
    keep_filtered_heights();
    pre_process_group();
    keep_graded_heights();
    if (report_.stopping()) {
        return false;
    }
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
    if (report_.stopping()) {
        return false;
    }
    if (keeps_buffers() || (wanted_.normals && light)) {
        keep_normals();
    }
    if (light) {
        convert_to_light();
    } else {
        set_full_light();
    }
    make_occlusion_map(light);
    if (report_.stopping()) {
        return false;
    }
    if (has_occlusion(options_.calc_type)) {
        report_.begin("Height -> AO");
        occlusion_group();
        if (report_.stopping()) {
            return false;
        }
        multiply_occlusion();
    } else {
        set_no_occlusion();
    }
    release_unkept();
    post_process_group();
    report_.begin("Storing Results");
    return !report_.stopping();
}

/// Colours and alphas go to the map, where the light and the open shares meet them.
void GpuMapRun::split_colours_and_heights()
{
    float4* const map = parts.map.get();
    float* const heights = heights_.data.get();
    source_.samples.visit([&](auto const& samples) {
        for_all_texels([&](std::ptrdiff_t i) {
            float3 const colour = samples.colour(i);
            map[i] = {colour.x, colour.y, colour.z, samples.alpha_or_one(i)};
            if (options_.height_map) {
                heights[i] = inverse_mean(colour);
            } else {
                heights[i] = samples.has_alpha() ? narrow(1.0 - samples.exact_alpha(i)) : 1.0f;
            }
        });
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
    if (report_.can_stop()) {
        filter_in_parts(heights_.data.get(), filtered.data.get(), shape_.rows, shape_.cols, options_.b_radius,
                        spatial.get(), range, report_);
    } else {
        BilateralFilter(heights_.data.get(), filtered.data.get(), shape_.rows, shape_.cols, options_.b_radius,
                        spatial.get(), range);
    }
    heights_ = std::move(filtered);
}

void GpuMapRun::keep_filtered_heights()
{
    if (kept_ != nullptr) {
        for_all_texels(
            [&](std::ptrdiff_t i) { options_.height_copy[i] = options_.preserve ? heights_.data[i] : 1.0f; });
    }
    if (wanted_.source_heights) {
        parts.source_heights = make_texel_array<float>(static_cast<std::size_t>(shape_.texels()));
        for_all_texels([&](std::ptrdiff_t i) { parts.source_heights[i] = heights_.data[i]; });
    }
}

void GpuMapRun::keep_graded_heights()
{
    if (wanted_.heights) {
        parts.heights = make_texel_array<float>(static_cast<std::size_t>(shape_.texels()));
        for_all_texels([&](std::ptrdiff_t i) { parts.heights[i] = heights_.data[i]; });
    }
}

void GpuMapRun::set_flat_normals()
{
    for_all_texels([&](std::ptrdiff_t i) { normals_[i] = {0.0f, 0.0f, 1.0f}; });
}

void GpuMapRun::decode_normals()
{
    report_.begin("Retreving Normal Map");
    for_all_texels([&](std::ptrdiff_t i) {
        float4 const& texel = parts.map[i];
        normals_[i] = decoded_normal({texel.x, texel.y, texel.z}, source_.coding);
    });
}

void GpuMapRun::keep_normals()
{
    auto const texels = static_cast<std::size_t>(shape_.texels());
    if (keeps_buffers()) {
        kept_->make_normal_map(texels);
        kept_normals_ = options_.normal_map;
    } else {
        parts.normals = make_texel_array<float3>(texels);
        kept_normals_ = parts.normals.get();
    }
    parts.light = make_texel_array<float3>(texels);
    for_all_texels([&](std::ptrdiff_t i) { kept_normals_[i] = normals_[i]; });
}

void GpuMapRun::convert_to_light()
{
    report_.begin("Normal -> Umbrix");
    bool const keeps = kept_normals_ != nullptr;
    float3* const light = keeps ? parts.light.get() : normals_.get();
    light_group(keeps ? kept_normals_ : normals_.get(), light);
    for_all_texels([&](std::ptrdiff_t i) { set_colour(parts.map[i], light[i]); });
}

void GpuMapRun::set_full_light()
{
    for_all_texels([&](std::ptrdiff_t i) { set_colour(parts.map[i], {1.0f, 1.0f, 1.0f}); });
}

void GpuMapRun::make_occlusion_map(bool light)
{
    if (wanted_.light && light && parts.light == nullptr) {
        parts.light = std::move(normals_);
    }
    normals_.reset();
    auto const texels = static_cast<std::size_t>(shape_.texels());
    if (keeps_buffers()) {
        kept_->make_ao_map(texels);
    } else {
        parts.occlusion = make_texel_array<float3>(texels);
        options_.ao_map = parts.occlusion.get(); // the field keeps the address when the map is released
    }
    open_ = options_.ao_map;
}

void GpuMapRun::set_no_occlusion()
{
    if (keeps_buffers()) {
        for_all_texels([&](std::ptrdiff_t i) { open_[i] = {1.0f, 1.0f, 1.0f}; });
    }
    parts.occlusion.reset();
}

void GpuMapRun::multiply_occlusion()
{
    for_all_texels([&](std::ptrdiff_t i) {
        multiply_colour(parts.map[i], open_[i]);
        parts.map[i].w = options_.preserve ? heights_.data[i] : 1.0f;
    });
}

void GpuMapRun::release_unkept()
{
    if (!wanted_.light) {
        parts.light.reset();
    }
    if (!wanted_.occlusion) {
        parts.occlusion.reset();
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
    auto const make = [this](float* heights, float3* normals, int rows, int columns) {
        SetDevice(gpu_.device);
        SetDest(normals, rows, columns);
        HeightToNormal_GPU(gpu_, heights, rows, columns, options_.n_scale, options_.gaussian,
                           options_.L_Detail, 0.0f, report_.status(), report_.progress());
        GetDest(normals, rows, columns);
    };
    if (borders_.all_repeat()) {
        make(heights_.data.get(), normals_.get(), shape_.rows, shape_.cols);
        return;
    }
    OpenBorders const open(borders_, shape_.rows, shape_.cols, options_.gaussian, options_.L_Detail);
    auto const heights = open.extended(heights_.data.get());
    auto const normals = make_texel_array<float3>(open.texels());
    make(heights.get(), normals.get(), open.rows(), open.columns());
    open.copy_inside(normals.get(), normals_.get());
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
    // Short dispatches have the same result; between them the library sees a stop.
    bool const at_once = !gpu_.ao_flag && !report_.can_stop();
    int const ao_value = gpu_.ao_flag || !report_.can_stop() ? gpu_.ao_value : 0;
    SetDevice(gpu_.device);
    SetDest(open_, shape_.rows, shape_.cols);
    SetSrc(open_, shape_.rows, shape_.cols);
    SetSrc(heights, shape_.rows, shape_.cols);
    SetDest(heights, shape_.rows, shape_.cols);
    DirectionalAO_GPU(heights, shape_.rows, shape_.cols, options_.rays, options_.alpha_limit,
                      options_.theta_limit, options_.radius, gpu_.device, options_.h_tile, options_.v_tile,
                      at_once, ao_value, report_.kernel_progress());
    if (!report_.stopping()) {
        GetDest(open_, shape_.rows, shape_.cols);
    }
    DeleteDest();
    DeleteSrc();
}

void GpuMapRun::post_process_group()
{
    // The device of the group before still holds.
    float4* const map = parts.map.get();
    SetDest(map, shape_.rows, shape_.cols);
    PostProcess_GPU(gpu_, map, shape_.rows, shape_.cols, options_);
    GetDest(map, shape_.rows, shape_.cols);
    DeleteDest();
    DeleteSrc();
}

} // namespace umbrixlib::detail
