// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/gpu_library.h"

#include <string>
#include <thread>
#include <vector>

namespace umbrixlib::test {

/// What the stages of the stand-in do to its slots. These leave marks that let a test see where a result
/// goes:
///   pre-processing    adds `kPre` to the float destination
///   normals           (0, 0, height) into the float3 destination
///   light             the normals with `kLight` added to x, into the float3 destination
///   occlusion         (`kOpenX`, `kOpenY`, `kOpenZ`) into the float3 destination
///   post-processing   multiplies x of the float4 destination by 1/2
struct GraphicsStages {
    static constexpr float kPre = 0.0625f;
    static constexpr float kLight = 0.25f;
    static constexpr float kOpenX = 0.5f;
    static constexpr float kOpenY = 0.25f;
    static constexpr float kOpenZ = 1.0f;

    struct Occlusion {
        int rays;
        float alpha_limit, theta_limit, radius;
        bool h_tile, v_tile;
    };

    GraphicsStages() = default;
    GraphicsStages(GraphicsStages const&) = delete;
    GraphicsStages& operator=(GraphicsStages const&) = delete;
    virtual ~GraphicsStages() = default;

    virtual void pre_process(float* heights, int rows, int cols, umbrix_options& options);
    virtual void normals(float3* result, float* heights, int rows, int cols, float n_scale, float gaussian,
                         float L_Detail);
    virtual void light(float3* normals, int rows, int cols, int mode);
    virtual void occlusion(float3* result, float* heights, int rows, int cols, Occlusion const& settings,
                           int* progress);
    virtual void post_process(float4* map, int rows, int cols, umbrix_options& options);
};

/// Stages that do their job, with the operators of the processor.
GraphicsStages& computing_stages();

/// Stands in for the graphics library in an executable that links `graphics_fake.cpp`: records every call and
/// keeps the slots as the library does. A stage that works in place works on the slot of its type; the others
/// take their argument, the occlusion the float source slot, and write the float3 destination.
struct GraphicsFake {
    /// The slot of an element type and side.
    template <typename T>
    struct Slot {
        std::vector<T> elements;
        int rows = 0;
        int cols = 0;
        bool taken = false;
    };

    GraphicsStages* stages = nullptr; ///< Null: those that leave marks.
    Slot<float> dest1;
    Slot<float3> dest3;
    Slot<float4> dest4;
    Slot<float> src1;
    Slot<float3> src3;

    /// If set, the stage text and number that a polling front end would see are recorded with every stage.
    std::string const* status = nullptr;
    int const* progress = nullptr;

    /// What went against the rules: calls from another thread than that of `reset`, or from inside a parallel
    /// region; a stage or a `GetDest` without the slot that it needs, or of another size.
    std::vector<std::string> faults;
    std::thread::id caller;

    int device = 0; ///< As selected last.

    static GraphicsFake& instance();
    /// Everything empty; calls are expected from this thread.
    void reset(GraphicsStages* chosen = nullptr);
    bool has_slots() const { return dest1.taken || dest3.taken || dest4.taken || src1.taken || src3.taken; }
};

} // namespace umbrixlib::test
