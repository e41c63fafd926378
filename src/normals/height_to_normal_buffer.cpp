// SPDX-License-Identifier: MIT
#include "normals/height_to_normal.h"

#include "boundary/texel_array.h"
#include "boundary/texture_kernels.h"
#include "common/rounding.h"
#include "filters/recursive_gaussian.h"
#include "normals/filter_parts_internal.h"
#include "normals/filter_tables_internal.h"
#include "normals/height_to_normal_internal.h"
#include "normals/open_borders_internal.h"

#include <cstddef>
#include <memory>

namespace umbrixlib::detail {

namespace {

void copy_on_all_threads(float const* from, float* to, std::ptrdiff_t count)
{
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        to[i] = from[i];
    }
}

/// Of heights that repeat.
void make_repeating_normals(float const* source, float3* destination, int height, int width,
                            NormalSettings const& settings, RunReport& report)
{
    auto const texels = static_cast<std::ptrdiff_t>(height) * width;
    auto const size = static_cast<std::size_t>(texels);
    auto image = make_texel_array<float>(size);
    float const* unscaled = source;
    report.begin("Generating Normal");

    {
        auto const spatial = std::make_unique<float[]>(spatial_table_size(settings.L_Detail));
        float range[kRangeTableSize] = {};
        // Contract: the tables are made whatever the radius is. One would expect them with the filter alone;
        // who stands in for the kernels sees the two calls. Test:
        // HeightToNormalBuffer.TablesAreMadeWithoutAFilterToo
        GenerateExp(settings.L_Detail, spatial.get());
        GenerateExp(kRangeSigma, range);
        if (settings.L_Detail > 1.0f) {
            // The kernel gets heights that it may write to.
            auto filtered = make_texel_array<float>(size);
            copy_on_all_threads(source, filtered.get(), texels);
            if (report.can_stop()) {
                filter_in_parts(filtered.get(), image.get(), height, width, settings.L_Detail, spatial.get(),
                                range, report);
            } else {
                BilateralFilter(filtered.get(), image.get(), height, width, settings.L_Detail, spatial.get(),
                                range);
            }
            unscaled = image.get();
        }
    }
    if (report.stopping()) {
        return;
    }

    float* const heights = image.get();
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t i = 0; i < texels; ++i) {
        heights[i] = narrow(wide(unscaled[i]) * wide(settings.n_scale));
    }
    if (settings.gaussian > 0.0f) {
        auto const scratch = make_texel_array<float>(size);
        gaussianFilterRGBA(heights, heights, scratch.get(), width, height, settings.gaussian);
    }
    if (settings.depth != 0.0f && !report.stopping()) {
        ChangeDepth(heights, height, width, settings.depth, settings.n_scale);
    }
    if (!report.stopping()) {
        Height2Normal(heights, destination, height, width);
    }
    if (settings.edge_a > 0.0f && settings.edge_b > 0.0f && !report.stopping()) {
        NormalEdges(destination, heights, height, width, settings.edge_a, settings.edge_b);
    }
}

} // namespace

void make_normals_of(float const* source, float3* destination, int height, int width,
                     NormalSettings const& settings, RunReport& report, Borders const& borders)
{
    if (borders.all_repeat()) {
        make_repeating_normals(source, destination, height, width, settings, report);
        return;
    }
    OpenBorders const open(borders, height, width, settings.gaussian, settings.L_Detail);
    auto const heights = open.extended(source);
    auto const normals = make_texel_array<float3>(open.texels());
    make_repeating_normals(heights.get(), normals.get(), open.rows(), open.columns(), settings, report);
    open.copy_inside(normals.get(), destination);
}

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

bool HeightToNormal(float* source, float3* destination, int height, int width, float n_scale, float gaussian,
                    float depth, bool /*normal_flag_1*/, int /*mode*/, float L_Detail, bool /*normal_flag_2*/,
                    float edge_a, float edge_b, bool /*normal_flag_3*/, std::string* progress_text,
                    int* progress)
{
    RunReport report(progress_text, progress);
    make_normals_of(source, destination, height, width, {n_scale, gaussian, depth, L_Detail, edge_a, edge_b},
                    report);
    return true;
}

} // namespace umbrix_v0
