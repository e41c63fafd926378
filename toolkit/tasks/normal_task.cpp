// SPDX-License-Identifier: MIT
#include "toolkit/base/worker_channel.h"
#include "toolkit/pictures/encode.h"
#include "toolkit/tasks/intermediate.h"
#include "toolkit/tasks/job.h"
#include "toolkit/tasks/library_run.h"
#include "toolkit/tasks/prepared_input.h"

#include <algorithm>
#include <nlohmann/json.hpp>
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

} // namespace

nlohmann::json run_normal_task(Job const& job)
{
    PreparedInput const input = prepare_input(job);
    OutputFormat const& format = *output_format(job.output);
    check_size(format, input.width, input.height);
    if (input.guess.kind == Kind::kNormalMap) {
        send_note({"this looks like a normal map already (" + input.guess.reason +
                   "); its brightness is taken for heights"});
    }

    Intermediate const files(job.scratch);
    send_phase(Phase::kMaking);
    write_source(files.source, input.has_alpha ? without_alpha(input.picture) : input.picture);
    float const n_scale = n_scale_of(job.settings, input.width);
    run_library([&](std::string* status, int* progress) {
        return HeightToNormal(files.source.c_str(), files.result.c_str(), n_scale, job.settings.gaussian,
                              false, 0, job.settings.detail, false, false, status, progress);
    });
    Picture normals = read_result(files.result, input.width, input.height, 3);
    if (job.normal_y == NormalY::kDown) {
        turn_green(normals);
    }
    write_picture(job.output, format, normals);
    return {{"width", input.width}, {"height", input.height}, {"n_scale", n_scale}};
}

} // namespace umbrixlib::toolkit
