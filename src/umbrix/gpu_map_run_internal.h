// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/gpu_library.h"
#include "boundary/image_io.h"
#include "common/vector_types.h"
#include "foundation/retained_buffer_internal.h"
#include "umbrix/kept_buffers_internal.h"
#include "umbrix/layer_branch_internal.h"
#include "umbrix/map_bytes_internal.h"
#include "umbrix/umbrix_options.h"

#include <cstddef>
#include <memory>
#include <string>

namespace umbrixlib::detail {

/// One image on its road through the stages of `UmbrixFile_GPU`.
///
/// The stages run one after the other on the calling thread, in the order of their declaration. Those in the
/// upper part open a parallel loop over the texels; those in the lower part are a group of calls of the
/// graphics library each, and open none.
class GpuMapRun {
public:
    GpuMapRun(GPU_opt gpu, umbrix_options& options, KeptBuffers& kept, LayerBranch const& layers,
               MapShape shape, std::string* status, int* progress);
    ~GpuMapRun();
    GpuMapRun(GpuMapRun const&) = delete;
    GpuMapRun& operator=(GpuMapRun const&) = delete;

    /// Allocates the buffers and fetches the bound image's bytes.
    void fetch_image();
    /// All stages, from bytes to bytes.
    void run(bool reverse_rows);
    /// Puts the bytes into DevIL's bound image.
    void hand_over_image();

private:
    void split_colours_and_heights();
    void take_heights_of_layers();
    void filter_heights();
    void keep_heights();
    void set_flat_normals();
    void decode_normals();
    void keep_normals();
    void convert_to_light();
    void set_full_light();
    void make_occlusion_map();
    void set_no_occlusion();
    void multiply_occlusion();
    void release_unkept();
    void store(bool reverse_rows);

    void pre_process_group();
    void normals_group();
    void light_group(float3* uploaded, float3* downloaded);
    void occlusion_group();
    void post_process_group();

    void announce(char const* stage);

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
    KeptBuffers& kept_;
    LayerBranch const& layers_;
    MapShape const shape_;
    std::string* const status_;
    int* const progress_;

    LargeArray<float4> result_;
    LargeArray<float3> normals_;   ///< Without `keep_buffers`: normals, then light.
    LargeArray<float3> converted_; ///< With `keep_buffers`: light.
    LargeArray<float3> occlusion_; ///< Where `ao_map` points, without `keep_buffers`.
    Buffer<float> heights_;
    ImageBytes pixels_;
};

} // namespace umbrixlib::detail
