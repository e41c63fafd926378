// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/image_io.h"
#include "boundary/large_array_internal.h"
#include "boundary/texture_kernels.h"
#include "common/vector_types.h"
#include "foundation/retained_buffer_internal.h"
#include "umbrix/kept_buffers_internal.h"
#include "umbrix/layer_branch_internal.h"
#include "umbrix/layer_heights_internal.h"
#include "umbrix/map_bytes_internal.h"
#include "umbrix/umbrix_options.h"

#include <barrier>
#include <cstddef>
#include <memory>
#include <omp.h>
#include <optional>
#include <string>

namespace umbrixlib::detail {

/// One image on its road through the stages of `UmbrixFile`.
///
/// The stages run inside one parallel region: every thread calls all of them, in the order of their
/// declaration. A stage handles the share of the calling thread, whose number it is given; what cannot be
/// divided is done by one thread in it, behind a barrier of its own.
///
/// Colours come together at the very end, from light, open shares and alpha: `compose`. Only a map that is
/// graded or reversed is ever stored as floats: those steps take the whole map.
class MapRun {
public:
    MapRun(umbrix_options& options, KeptBuffers& kept, LayerBranch const& layers, int thread_count,
            std::string* status, int* progress);
    ~MapRun();
    MapRun(MapRun const&) = delete;
    MapRun& operator=(MapRun const&) = delete;

    /// Allocates the buffers for an image of @p shape and fetches the bound image's bytes, unless the heights
    /// come from the layers.
    void fetch_image(MapShape shape);
    /// All stages, from bytes to bytes.
    void run(bool reverse_rows);
    /// Puts the bytes into DevIL's bound image.
    void hand_over_image();

private:
    void clear_left_out_texels();
    void make_heights(int thread);
    void take_heights_of_layers(int thread);
    void keep_heights(int thread);
    void filter_heights(int thread);
    void pre_process();
    void generate_normals(int thread);
    void decode_normals(int thread);
    void convert_to_light(int thread);
    void keep_full_light(int thread);
    void make_occlusion_map(int thread);
    void keep_no_occlusion(int thread);
    void find_occlusion(int thread);
    void compose_map(int thread);
    void release_sources(int thread);
    void post_process();
    void store(int thread);

    void announce(int thread, char const* stage);
    bool filters_heights() const { return options_.b_radius >= 1.0f; }
    float3* target_normals() { return options_.keep_buffers ? options_.normal_map : normals_.get(); }
    float alpha(std::ptrdiff_t texel) const;
    void compose(std::ptrdiff_t first, std::ptrdiff_t count, float3* colours, float* alphas) const;
    template <typename Body>
    void for_composed_blocks(std::ptrdiff_t first, std::ptrdiff_t last, Body&& body) const;

    /// Does @p work on one thread of the team. It may open teams of its own, so the others sleep meanwhile:
    /// at a barrier of OpenMP they would spin for milliseconds, on the processors that those teams need.
    template <typename Work>
    void on_one_thread(Work&& work)
    {
#pragma omp single nowait
        work();
        meeting_->arrive_and_wait();
    }

    /// Whether no thread is missing in the team. It may have more than there are shares.
    bool is_whole_team() const
    {
        return omp_get_num_threads() >= thread_count_;
    }

    /// Whether @p thread has a share. A further thread only meets the others at the barriers.
    bool has_share(int thread) const
    {
        return thread < thread_count_;
    }

    /// Whether the share of @p texel has no thread.
    bool is_left_out(std::ptrdiff_t texel) const
    {
        return !is_whole_team() && texel % thread_count_ >= omp_get_num_threads();
    }

    /// Calls @p body with the first texel and the one behind the last, for pieces that are the share of
    /// @p thread together.
    ///
    /// Thread t of n has the texels t, t + n, ..., so a team that is too small leaves texels out. Nobody can
    /// see who handles which as long as nobody is missing; then each thread has one piece, because threads
    /// that take turns within a line of the cache wait for each other.
    template <typename Body>
    void for_own_texels(int thread, Body&& body)
    {
        std::ptrdiff_t const texels = shape_.texels();
        if (!has_share(thread)) {
            return;
        }
        if (is_whole_team()) {
            body(texels * thread / thread_count_, texels * (thread + 1) / thread_count_);
            return;
        }
        for (std::ptrdiff_t i = thread; i < texels; i += thread_count_) {
            body(i, i + 1);
        }
    }

    umbrix_options& options_;
    KeptBuffers& kept_;
    LayerBranch const& layers_;
    int const thread_count_;
    std::string* const status_;
    int* const progress_;

    bool const makes_light_;
    bool const makes_occlusion_;

    std::optional<std::barrier<>> meeting_; ///< Of the whole team.
    MapShape shape_{};
    LargeArray<float3> normals_;   ///< Normals, then light.
    LargeArray<float3> occlusion_; ///< Where `ao_map` points, without `keep_buffers`.
    LargeArray<float4> result_;    ///< Only for a map that is graded or reversed.
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
