// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/texel_array.h"
#include "boundary/texture_kernels.h"
#include "common/vector_types.h"
#include "foundation/picture_samples_internal.h"
#include "foundation/retained_buffer_internal.h"
#include "foundation/run_report_internal.h"
#include "umbrix/kept_buffers_internal.h"
#include "umbrix/layer_branch_internal.h"
#include "umbrix/layer_heights_internal.h"
#include "umbrix/map_bytes_internal.h"
#include "umbrix/map_parts_internal.h"
#include "umbrix/umbrix_options.h"

#include <barrier>
#include <cstddef>
#include <exception>
#include <memory>
#include <omp.h>
#include <optional>

namespace umbrixlib::detail {

/// One picture on its road through the stages of `UmbrixFile`.
///
/// The stages run inside one parallel region: every thread calls all of them, in the order of their
/// declaration. A stage handles the share of the calling thread, whose number it is given; what cannot be
/// divided is done by one thread in it, behind a barrier of its own.
///
/// Colours come together at the very end, from light, open shares and alpha: `compose`. Only a map that is
/// graded, or wanted as floats, is ever stored as floats.
class MapRun {
public:
    /// How the texels are shared out.
    enum class Shares {
        kProcessors, ///< As many shares as processors, whatever the team: a smaller one leaves texels out.
        kTeam,       ///< As many as the team has threads.
    };

    /// @param kept   For the arrays that `keep_buffers` leaves to the caller; null keeps none.
    /// @param shape  Of the map; its channels are not looked at.
    MapRun(umbrix_options& options, KeptBuffers* kept, LayerBranch const& layers, MapSource const& source,
           MapShape shape, Shares shares, RunReport& report, Borders const& borders = {});
    ~MapRun();
    MapRun(MapRun const&) = delete;
    MapRun& operator=(MapRun const&) = delete;

    /// All stages, to the bytes of @p target or, if that has none, to floats.
    ///
    /// @param wanted What the run leaves in `parts` beside the map.
    /// @return False if the run was stopped.
    bool run(ByteTarget const& target, MapDemand const& wanted);

    /// What a run has made.
    MapParts parts;

private:
    void clear_left_out_texels();
    void make_heights(int thread);
    void take_heights_of_layers(int thread);
    void keep_heights_before_filter(int thread);
    void filter_heights(int thread);
    void run_filter(int thread);
    void pre_process();
    void keep_graded_heights(int thread);
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

    void make_buffers();
    void run_stages(int thread);
    bool ends_early();
    void begin(int thread, char const* stage);
    bool filters_heights() const { return options_.b_radius >= 1.0f; }
    bool keeps_buffers() const { return kept_ != nullptr && options_.keep_buffers; }
    bool leaves_texels_out() const { return omp_get_num_threads() < shares_; }
    float3* target_normals() { return kept_normals_ != nullptr ? kept_normals_ : normals_.get(); }
    void find_alphas(std::ptrdiff_t first, std::ptrdiff_t count, float* alphas) const;
    void compose(std::ptrdiff_t first, std::ptrdiff_t count, float3* colours, float* alphas) const;
    template <typename Body>
    void for_composed_blocks(std::ptrdiff_t first, std::ptrdiff_t last, Body&& body) const;

    /// Does @p work on one thread of the team. It may open teams of its own, so the others sleep meanwhile:
    /// at a barrier of OpenMP they would spin for milliseconds, on the processors that those teams need. What
    /// it throws ends the run at the next `ends_early`.
    template <typename Work>
    void on_one_thread(Work&& work)
    {
#pragma omp single nowait
        {
            try {
                work();
            } catch (...) {
                thrown_ = std::current_exception();
            }
        }
        meeting_->arrive_and_wait();
    }

    /// Whether @p thread has a share. A further thread only meets the others at the barriers.
    bool has_share(int thread) const
    {
        return thread < shares_;
    }

    /// Whether the share of @p texel has no thread.
    bool is_left_out(std::ptrdiff_t texel) const
    {
        return leaves_texels_out() && texel % shares_ >= omp_get_num_threads();
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
        if (!leaves_texels_out()) {
            body(texels * thread / shares_, texels * (thread + 1) / shares_);
            return;
        }
        for (std::ptrdiff_t i = thread; i < texels; i += shares_) {
            body(i, i + 1);
        }
    }

    umbrix_options& options_;
    KeptBuffers* const kept_;
    LayerBranch const& layers_;
    MapSource const source_;
    MapShape const shape_;
    Shares const share_rule_;
    RunReport& report_;
    Borders const borders_; ///< Of the heights that normals are made of.

    bool const makes_light_;
    bool const makes_occlusion_;
    bool const decodes_normals_;

    ByteTarget target_{};
    MapDemand wanted_{};
    int shares_ = 0;
    std::optional<std::barrier<>> meeting_; ///< Of the whole team.
    std::exception_ptr thrown_;
    bool stopped_ = false;
    float3* kept_normals_ = nullptr; ///< Normals that outlive the light; null for none.
    float3* open_ = nullptr;         ///< The occlusion map.
    TexelArray<float3> normals_;     ///< Normals, then light.
    Buffer<float> heights_;
    HeightRange height_range_; ///< Of the layers' heights.
    Buffer<float> scratch_;
    std::unique_ptr<float[]> spatial_table_;
    float range_table_[257] = {};
    Buffer<ray> rays_a_;
    Buffer<ray> rays_b_;
    Buffer<ray> rays_c_;
};

} // namespace umbrixlib::detail
