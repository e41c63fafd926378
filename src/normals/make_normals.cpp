// SPDX-License-Identifier: MIT
#include "normals/make_normals.h"

#include "boundary/run_turn_internal.h"
#include "boundary/small_team_internal.h"
#include "foundation/picture_samples_internal.h"
#include "normals/colour_heights_internal.h"
#include "normals/open_borders_internal.h"

#include <utility>

namespace umbrixlib {

using namespace detail;

namespace {

void turn_into_normals_with_open_borders(float3* image, NormalsRequest const& request, RunReport& report)
{
    OpenBorders const open(request.borders, request.heights.height, request.heights.width, request.gaussian,
                           0.0f);
    auto const extended = open.extended(image);
    turn_into_normals(extended.get(), open.rows(), open.columns(), request.n_scale, request.gaussian, report);
    open.copy_inside(extended.get(), image);
}

} // namespace

NormalsResult make_normals(NormalsRequest const& request)
{
    NormalsResult result;
    PictureView const& heights = request.heights;
    if (!PictureSamples::are_readable(heights)) {
        return result;
    }
    RunReport report(request.control);
    RunTurn const turn(report);
    if (!turn.has_come()) {
        result.outcome = Outcome::kStopped;
        return result;
    }
    SmallTeam const team(static_cast<std::ptrdiff_t>(heights.height) * heights.width);
    TexelArray<float3> image = fetch_colours(PictureSamples::of(heights), heights.height, heights.width);
    report.begin("Generating Normal");
    if (request.borders.all_repeat()) {
        turn_into_normals(image.get(), heights.height, heights.width, request.n_scale, request.gaussian,
                          report);
    } else {
        turn_into_normals_with_open_borders(image.get(), request, report);
    }
    if (report.stopping()) {
        result.outcome = Outcome::kStopped;
        return result;
    }
    result.outcome = Outcome::kDone;
    result.rows = heights.height;
    result.cols = heights.width;
    result.normals = std::move(image);
    return result;
}

} // namespace umbrixlib
