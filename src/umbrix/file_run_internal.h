// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/image_io.h"
#include "boundary/texture_kernels.h"
#include "foundation/retained_buffer_internal.h"
#include "foundation/vector_types.h"
#include "umbrix/layer_branch_internal.h"
#include "umbrix/layer_heights_internal.h"
#include "umbrix/map_bytes_internal.h"
#include "umbrix/umbrix_options.h"

#include <array>
#include <cstddef>
#include <memory>
#include <string>

namespace umbrixlib::detail {

/// One image on its road through the stages of `UmbrixFile`.
///
/// The stages run inside one parallel region: every thread calls all of them, in the order of their
/// declaration. A stage handles the texels `thread`, `thread + thread_count`, ... with `thread` the caller's
/// number; what cannot be divided is done by one thread in it, behind a barrier of its own. Only barriers
/// that stand in `run` order texels of different threads.
class FileRun {
public:
    FileRun(umbrix_options& options, LayerBranch const& layers, int thread_count, std::string* status,
            int* progress);
    ~FileRun();
    FileRun(FileRun const&) = delete;
    FileRun& operator=(FileRun const&) = delete;

    /// Allocates the buffers for an image of @p shape and fetches the bound image's bytes, unless the heights
    /// come from the layers.
    void fetch_image(MapShape shape);
    /// All stages, from bytes to bytes.
    void run(bool reverse_rows);
    /// Puts the bytes into DevIL's bound image.
    void hand_over_image();

private:
    void split_colours_and_heights(int thread);
    void take_heights_of_layers(int thread);
    void keep_heights(int thread);
    void filter_heights(int thread);
    void pre_process();
    void generate_normals(int thread);
    void decode_normals(int thread);
    void convert_to_light(int thread);
    void set_full_light(int thread);
    void make_occlusion_map(int thread);
    void set_no_occlusion(int thread);
    void multiply_occlusion(int thread);
    void release_unkept(int thread);
    void post_process();
    void store(int thread, bool reverse_rows);

    void announce(int thread, char const* stage);
    float3* target_normals() { return options_.keep_buffers ? options_.normal_map : normals_.get(); }

    template <typename Body>
    void for_own_texels(int thread, Body&& body)
    {
        std::ptrdiff_t const texels = shape_.texels();
        for (std::ptrdiff_t i = thread; i < texels; i += thread_count_) {
            body(i);
        }
    }

    umbrix_options& options_;
    LayerBranch const& layers_;
    int const thread_count_;
    std::string* const status_;
    int* const progress_;

    MapShape shape_{};
    std::unique_ptr<float4[]> result_;
    std::unique_ptr<float3[]> normals_; ///< Normals, then light.
    Buffer<float> heights_;
    HeightRange height_range_; ///< Of the layers' heights.
    Buffer<float> scratch_;
    ImageBytes pixels_;
    std::unique_ptr<float[]> spatial_table_;
    float range_table_[257] = {};
    Buffer<ray> rays_a_;
    Buffer<ray> rays_b_;
    Buffer<ray> rays_c_;
};

} // namespace umbrixlib::detail
