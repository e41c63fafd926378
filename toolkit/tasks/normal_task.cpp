// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encode.h"
#include "toolkit/tasks/library_run.h"
#include "toolkit/tasks/methods/narrowed.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/tasks.h"

#include <algorithm>
#include <umbrixlib.h>

namespace umbrixlib::toolkit {

namespace {

/// Turns green over in normals that the library encoded: as it cuts (v + 1) * 255 / 2 off to a whole number,
/// the code of -v is 254 less that of v, and flat ground stays 127.
void turn_green(Picture& normals)
{
    for (std::size_t i = 0; i < normals.texels(); ++i) {
        std::uint8_t& green = normals.texel(i)[1];
        green = static_cast<std::uint8_t>(std::max(254 - green, 0));
    }
}

Picture make_picture_of_normals(NormalJob const& job, Picture const& heights, float n_scale,
                                Observer& observer)
{
    NormalsRequest request;
    request.heights = heights.view();
    request.n_scale = n_scale;
    request.gaussian = job.settings.gaussian;
    NormalsResult result;
    run_in_memory(job.files.input, observer, [&](RunControl& control) {
        request.control = &control;
        result = make_normals(request);
        return result.outcome;
    });
    return narrowed_normals(result.normals.get(), result.cols, result.rows);
}

} // namespace

NormalReport run(NormalJob const& job, Observer& observer)
{
    JobFiles const& files = job.files;
    PreparedInput const input = prepare_input({files.input, files.input, files.max_texels}, observer);
    OutputFormat const& format = *output_format(files.output.file);
    check_size(format, files.output.name, input.width, input.height);
    if (input.guess.kind == Kind::kNormalMap) {
        observer.note(files.input, {"this looks like a normal map already (" + input.guess.reason +
                                    "); its brightness is taken for heights"});
    }

    observer.begin(Phase::kMaking, files.input);
    float const n_scale = n_scale_of(job.settings, input.width);
    Picture normals = make_picture_of_normals(job, input.picture, n_scale, observer);
    if (job.normal_y == NormalY::kDown) {
        turn_green(normals);
    }
    write_picture(files.output.file, format, files.output.name, normals, observer);
    return {input.width, input.height, n_scale};
}

} // namespace umbrixlib::toolkit
