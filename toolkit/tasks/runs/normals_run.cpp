// SPDX-License-Identifier: MIT
#include "toolkit/tasks/runs/normals_run.h"

#include "toolkit/tasks/runs/library_run.h"

namespace umbrixlib::toolkit {

NormalsResult normals_of_heights(Picture const& heights, float n_scale, Settings const& settings,
                                 std::string const& file, Observer& observer)
{
    NormalsRequest request;
    request.heights = heights.view();
    request.n_scale = n_scale;
    request.gaussian = settings.gaussian;
    request.borders = borders_of(settings);
    NormalsResult result;
    run_in_memory(
        file, observer,
        [&](RunControl& control) {
            request.control = &control;
            result = make_normals(request);
            return result.outcome;
        },
        heights.texels());
    return result;
}

} // namespace umbrixlib::toolkit
