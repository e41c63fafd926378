// SPDX-License-Identifier: MIT
#include "boundary/texture_kernels.h"
#include "graphics_fake.h"
#include "normals/height_to_normal.h"
#include "umbrix/grading.h"

#include <algorithm>

namespace umbrixlib::test {

namespace {

class ComputingStages : public GraphicsStages {
public:
    void pre_process(float* heights, int rows, int cols, umbrix_options& options) override
    {
        PreProcess(heights, rows, cols, options);
    }

    void normals(float3* result, float* heights, int rows, int cols, float n_scale, float gaussian,
                 float L_Detail) override
    {
        std::string status;
        int progress = 0;
        HeightToNormal(heights, result, rows, cols, n_scale, gaussian, 0.0f, false, 0, L_Detail, false, 0.0f,
                       0.0f, false, &status, &progress);
    }

    void light(float3* normals, int rows, int cols, int mode) override
    {
        Normal2Umbrix(normals, rows, cols, static_cast<Modes>(mode), 0, 1);
    }

    void occlusion(float3* result, float* heights, int rows, int cols, Occlusion const& settings,
                   int* progress) override
    {
        auto const room = 2 * static_cast<std::size_t>(std::max(settings.rays, 0));
        std::vector<ray> bundles[3] = {std::vector<ray>(room), std::vector<ray>(room),
                                       std::vector<ray>(room)};
        ray* a = bundles[0].data();
        ray* b = bundles[1].data();
        ray* c = bundles[2].data();
        GenerateRays(rows, cols, a, b, c, settings.rays, settings.theta_limit, settings.alpha_limit);
        Height2DirectionalAO(result, heights, rows, cols, a, b, c, settings.rays, 1.0f, settings.radius, true,
                             settings.h_tile, settings.v_tile, progress);
    }

    void post_process(float4* map, int rows, int cols, umbrix_options& options) override
    {
        PostProcess(map, rows, cols, options);
    }
};

} // namespace

GraphicsStages& computing_stages()
{
    static ComputingStages stages;
    return stages;
}

} // namespace umbrixlib::test
