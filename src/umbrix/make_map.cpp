// SPDX-License-Identifier: MIT
#include "umbrix/make_map.h"

#include "boundary/run_turn_internal.h"
#include "boundary/small_team_internal.h"
#include "layers/nlayers.h"
#include "umbrix/gpu_map_run_internal.h"
#include "umbrix/map_run_internal.h"

#include <algorithm>
#include <omp.h>
#include <utility>

namespace umbrixlib {

namespace detail {

namespace {

/// Lets a parallel region inside a parallel region have threads.
class NestedTeams {
public:
    NestedTeams() { omp_set_max_active_levels(std::max(before_, omp_get_active_level() + 2)); }
    NestedTeams(NestedTeams const&) = delete;
    NestedTeams& operator=(NestedTeams const&) = delete;
    ~NestedTeams() { omp_set_max_active_levels(before_); }

private:
    int const before_ = omp_get_max_active_levels();
};

/// Whether the stack has a layer for each description.
bool has_whole_stack(MapRequest const& request)
{
    int const described = request.layers != nullptr ? request.layers->count : 0;
    return described == 0 || (request.stack != nullptr && request.stack->Count() == described);
}

template <typename Run>
void run_into(Run& run, MapRequest const& request, MapShape shape, MapResult& result)
{
    ByteTarget target;
    if (request.form != MapForm::kFloats) {
        target.channels = request.form == MapForm::kBytes ? 4 : 3;
        result.bytes = make_texel_array<unsigned char>(static_cast<std::size_t>(shape.texels()) *
                                                       static_cast<std::size_t>(target.channels));
        target.bytes = result.bytes.get();
    }
    MapDemand const wanted{request.wants_light, request.wants_occlusion, request.wants_normals,
                           request.wants_heights, request.wants_source_heights};
    if (!run.run(target, wanted)) {
        result = MapResult{};
        result.outcome = Outcome::kStopped;
        return;
    }
    result.outcome = Outcome::kDone;
    result.rows = shape.rows;
    result.cols = shape.cols;
    result.map = std::move(run.parts.map);
    result.light = std::move(run.parts.light);
    result.occlusion = std::move(run.parts.occlusion);
    result.normals = std::move(run.parts.normals);
    result.heights = std::move(run.parts.heights);
    result.source_heights = std::move(run.parts.source_heights);
}

} // namespace

} // namespace detail

using namespace detail;

MapResult make_map(MapRequest const& request)
{
    MapResult result;
    if (!has_whole_stack(request) || request.source.width < 0 || request.source.height < 0) {
        return result;
    }
    umbrix_options options = request.options;
    options.keep_buffers = false;
    options.ao_map = options.normal_map = nullptr;
    options.height_copy = nullptr;
    LayerBranch const layers(request.layers, request.stack);
    MapShape shape{request.source.height, request.source.width, 0};
    layers.settle(options, shape);
    if (!options.blend_height && !PictureSamples::are_readable(request.source)) {
        return result;
    }

    RunReport report(request.control);
    RunTurn const turn(report);
    if (!turn.has_come()) {
        result.outcome = Outcome::kStopped;
        return result;
    }
    NestedTeams const nested;
    MapSource const source{PictureSamples::of(request.source), request.coding};
    if (request.gpu) {
        GpuMapRun run(*request.gpu, options, nullptr, layers, source, shape, report, request.borders);
        run_into(run, request, shape, result);
    } else {
        SmallTeam const team(shape.texels()); // with a device, a team of one would leave texels out
        MapRun run(options, nullptr, layers, source, shape, MapRun::Shares::kTeam, report, request.borders);
        run_into(run, request, shape, result);
    }
    return result;
}

} // namespace umbrixlib
