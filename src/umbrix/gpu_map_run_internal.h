// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/gpu_library.h"
#include "boundary/texel_array.h"
#include "common/vector_types.h"
#include "foundation/retained_buffer_internal.h"
#include "foundation/run_report_internal.h"
#include "umbrix/kept_buffers_internal.h"
#include "umbrix/layer_branch_internal.h"
#include "umbrix/map_bytes_internal.h"
#include "umbrix/map_parts_internal.h"
#include "umbrix/umbrix_options.h"

#include <cstddef>

namespace umbrixlib::detail {

/// One image on its road through the stages of `UmbrixFile_GPU`.
///
/// The stages run one after the other on the calling thread, in the order of their declaration. Those in the
/// upper part open a parallel loop over the texels; those in the lower part are a group of calls of the
/// graphics library each, and open none.
class GpuMapRun {
public:
    /// @param kept  For the arrays that a run leaves to the caller; null keeps none.
    /// @param shape Of the map; its channels are not looked at.
    GpuMapRun(GPU_opt gpu, umbrix_options& options, KeptBuffers* kept, LayerBranch const& layers,
              MapSource const& source, MapShape shape, RunReport& report, Borders const& borders = {});
    ~GpuMapRun();
    GpuMapRun(GpuMapRun const&) = delete;
    GpuMapRun& operator=(GpuMapRun const&) = delete;

    /// All stages, to the bytes of @p target or, if that has none, to floats.
    ///
    /// @param wanted What the run leaves in `parts` beside the map.
    /// @return False if the run was stopped.
    bool run(ByteTarget const& target, MapDemand const& wanted);

    /// What a run has made.
    MapParts parts;

private:
    void split_colours_and_heights();
    void take_heights_of_layers();
    void filter_heights();
    void keep_filtered_heights();
    void keep_graded_heights();
    void set_flat_normals();
    void decode_normals();
    void keep_normals();
    void convert_to_light();
    void set_full_light();
    void make_occlusion_map(bool light);
    void set_no_occlusion();
    void multiply_occlusion();
    void release_unkept();

    void pre_process_group();
    void normals_group();
    void light_group(float3* uploaded, float3* downloaded);
    void occlusion_group();
    void post_process_group();

    void make_buffers();
    bool run_stages();
    bool keeps_buffers() const { return kept_ != nullptr && options_.keep_buffers; }

    template <typename Body>
    void for_all_texels(Body&& body)
    {
        std::ptrdiff_t const texels = shape_.texels();
#pragma omp parallel for schedule(static)
        for (std::ptrdiff_t i = 0; i < texels; ++i) {
            body(i);
        }
    }

    GPU_opt const gpu_;
    umbrix_options& options_;
    KeptBuffers* const kept_;
    LayerBranch const& layers_;
    MapSource const source_;
    MapShape const shape_;
    RunReport& report_;
    Borders const borders_; ///< Of the heights that normals are made of.

    MapDemand wanted_{};
    TexelArray<float3> normals_;     ///< Without kept ones: normals, then light.
    float3* kept_normals_ = nullptr; ///< Normals that outlive the light, which is in `parts` then.
    float3* open_ = nullptr;         ///< The occlusion map.
    Buffer<float> heights_;
};

} // namespace umbrixlib::detail
