// SPDX-License-Identifier: MIT
#include "normals/make_normals.h"

#include "boundary/run_turn_internal.h"
#include "foundation/picture_samples_internal.h"
#include "normals/colour_heights_internal.h"

#include <utility>

namespace umbrixlib {

using namespace detail;

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
    TexelArray<float3> image = fetch_colours(PictureSamples::of(heights), heights.height, heights.width);
    report.begin("Generating Normal");
    turn_into_normals(image.get(), heights.height, heights.width, request.n_scale, request.gaussian, report);
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
