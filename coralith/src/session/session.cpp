// SPDX-License-Identifier: MIT
#include "session/session.h"

#include "session/discovery.h"
#include "stages/grading.h"
#include "stages/light.h"
#include "stages/normals.h"

#include <cstring>
#include <new>
#include <utility>

namespace coralith {
namespace {

bool has_texels(int rows, int cols)
{
    return rows > 0 && cols > 0;
}

/// What @p slot holds if it has the size, else the caller's buffer, which may be null.
float const* slot_or(Slot& slot, Shape shape, float const* argument)
{
    return slot.holds(shape) ? slot.data() : argument;
}

float const* argument_or(float const* argument, Slot& slot, Shape shape)
{
    return argument != nullptr || !slot.holds(shape) ? argument : slot.data();
}

} // namespace

void Session::set(Slot& slot, float const* buffer, int rows, int cols)
{
    if (!has_texels(rows, cols) || buffer == nullptr) {
        return;
    }
    try {
        slot.take({rows, cols}, buffer);
    } catch (std::bad_alloc const&) {
        slot.clear();
        runner_.reports().report("Error: no memory for a slot of " + std::to_string(rows) + " x " +
                                 std::to_string(cols));
    }
}

void Session::get(Slot& slot, float* buffer, int rows, int cols)
{
    if (!has_texels(rows, cols) || buffer == nullptr) {
        return;
    }
    if (!slot.holds({rows, cols})) {
        runner_.reports().report("GetDest: no result of this type and " + std::to_string(rows) + " x " +
                                 std::to_string(cols));
        return;
    }
    std::memcpy(buffer, slot.data(), slot.bytes());
}

void Session::delete_destinations()
{
    destination_1.clear();
    destination_3.clear();
    destination_4.clear();
}

void Session::delete_sources()
{
    source_1.clear();
    source_3.clear();
}

template <typename Work>
bool Session::run(Stage stage, Shape shape, Slot& slot, Work work)
{
    try {
        Slot result(slot.components()); // the slot may hold the input
        result.take(shape);
        if (runner_.run(stage, [&](Backend& backend) { return work(backend, result.data()); })) {
            slot = std::move(result);
            return true;
        }
    } catch (std::bad_alloc const&) {
        runner_.reports().report(std::string("Error: no memory for the result of ") + name_of(stage));
    }
    slot.clear();
    return false;
}

void Session::report_missing(Stage stage)
{
    runner_.reports().report(std::string(name_of(stage)) + ": neither a buffer nor a slot of this size");
}

bool Session::pre_process(float const* heights, int rows, int cols, umbrix_options const& options)
{
    if (!has_texels(rows, cols)) {
        return false;
    }
    Shape const shape = {rows, cols};
    float const* const input = slot_or(destination_1, shape, heights);
    if (input == nullptr) {
        report_missing(Stage::kPreProcess);
        return false;
    }
    return run(Stage::kPreProcess, shape, destination_1, [&](Backend& backend, float* result) {
        return grade(backend, shape, 1, Grading::of_heights(options), input, result);
    });
}

bool Session::post_process(float const* map, int rows, int cols, umbrix_options const& options)
{
    if (!has_texels(rows, cols)) {
        return false;
    }
    Shape const shape = {rows, cols};
    float const* const input = slot_or(destination_4, shape, map);
    if (input == nullptr) {
        report_missing(Stage::kPostProcess);
        return false;
    }
    return run(Stage::kPostProcess, shape, destination_4, [&](Backend& backend, float* result) {
        return grade(backend, shape, 4, Grading::of_map(options), input, result);
    });
}

bool Session::height_to_normal(float const* heights, int rows, int cols, float n_scale, float gaussian,
                               float L_Detail)
{
    if (!has_texels(rows, cols)) {
        return false;
    }
    Shape const shape = {rows, cols};
    float const* const input = argument_or(heights, destination_1, shape);
    if (input == nullptr) {
        report_missing(Stage::kHeightToNormal);
        return false;
    }
    return run(Stage::kHeightToNormal, shape, destination_3, [&](Backend& backend, float* result) {
        return coralith::height_to_normal(backend, shape, {n_scale, gaussian, L_Detail}, input, result);
    });
}

bool Session::umbrix_normal(float const* normals, int mode, int rows, int cols)
{
    if (!has_texels(rows, cols)) {
        return false;
    }
    Shape const shape = {rows, cols};
    float const* const input = argument_or(normals, destination_3, shape);
    if (input == nullptr) {
        report_missing(Stage::kUmbrixNormal);
        return false;
    }
    return run(Stage::kUmbrixNormal, shape, destination_3, [&](Backend& backend, float* result) {
        return light_normals(backend, shape, mode, input, result);
    });
}

bool Session::directional_occlusion(float const* heights, int rows, int cols,
                                    OcclusionSettings const& settings, PortionRule const& rule, int* progress)
{
    if (!has_texels(rows, cols)) {
        return false;
    }
    Shape const shape = {rows, cols};
    float const* const input = slot_or(source_1, shape, heights);
    if (input == nullptr) {
        report_missing(Stage::kDirectionalOcclusion);
        return false;
    }
    Progress shown(progress);
    bool const has_run =
        run(Stage::kDirectionalOcclusion, shape, destination_3, [&](Backend& backend, float* result) {
            return coralith::directional_occlusion(backend, shape, settings, rule, input, result, shown);
        });
    if (shown.is_stopped()) {
        destination_3.clear();
    }
    return has_run && !shown.is_stopped();
}

Session& session()
{
    // Never destroyed: drivers are often gone when static destructors run.
    static Session* const only = new Session(discover_devices());
    return *only;
}

} // namespace coralith
