// SPDX-License-Identifier: MIT
#pragma once

#include "session/slot.h"
#include "session/stage_runner.h"
#include "stages/occlusion.h"
#include "umbrix/umbrix_options.h"

#include <string>

namespace coralith {

/// The state behind the exported calls: five slots and the runner of the stages.
class Session {
public:
    explicit Session(Discovery found) : runner_(std::move(found)) {}

    StageRunner& runner() { return runner_; }

    /// Copies a buffer in. A null buffer or a side below 1 leaves the slot as it is.
    void set(Slot& slot, float const* buffer, int rows, int cols);
    /// Copies a slot out. Without one, or with one of another size, the buffer stays and the reason is
    /// reported.
    void get(Slot& slot, float* buffer, int rows, int cols);
    void delete_destinations();
    void delete_sources();

    bool pre_process(float const* heights, int rows, int cols, umbrix_options const& options);
    bool post_process(float const* map, int rows, int cols, umbrix_options const& options);
    bool height_to_normal(float const* heights, int rows, int cols, float n_scale, float gaussian,
                          float L_Detail);
    bool umbrix_normal(float const* normals, int mode, int rows, int cols);
    bool directional_occlusion(float const* heights, int rows, int cols, OcclusionSettings const& settings,
                               PortionRule const& rule, int* progress);

    Slot destination_1{1};
    Slot destination_3{3};
    Slot destination_4{4};
    Slot source_1{1};
    Slot source_3{3};

private:
    /// Runs a stage whose result goes to @p slot. False, and the slot empty, if there is none.
    template <typename Work>
    bool run(Stage stage, Shape shape, Slot& slot, Work work);
    void report_missing(Stage stage);

    StageRunner runner_;
};

/// The one behind the exported calls; lives until the process ends. The first call looks for devices.
Session& session();

} // namespace coralith
