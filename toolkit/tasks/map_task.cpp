// SPDX-License-Identifier: MIT
#include "toolkit/base/worker_channel.h"
#include "toolkit/pictures/encode.h"
#include "toolkit/pictures/picture_difference.h"
#include "toolkit/tasks/graphics_run.h"
#include "toolkit/tasks/intermediate.h"
#include "toolkit/tasks/job.h"
#include "toolkit/tasks/map_picture.h"
#include "toolkit/tasks/prepared_input.h"

#include <nlohmann/json.hpp>

namespace umbrixlib::toolkit {

namespace {

/// A normal map whose alpha is the same everywhere describes flat ground.
bool has_relief_in_alpha(Picture const& picture)
{
    if (picture.channels < 4) {
        return false;
    }
    for (std::size_t i = 1; i < picture.texels(); ++i) {
        if (picture.texel(i)[3] != picture.texel(0)[3]) {
            return true;
        }
    }
    return false;
}

void note_normal_map(Job const& job, PreparedInput const& input)
{
    if (!has_relief_in_alpha(input.picture)) {
        bool const asks_for_heights =
            job.settings.occlusion || job.settings.generate_normal || job.settings.height_in_alpha;
        if (asks_for_heights) {
            send_note({"a normal map carries its heights in its alpha, and this one has none there: its "
                       "ground counts "
                       "as flat"});
        }
    } else if (is_tiff(job.input)) {
        send_note({"the alpha of a TIFF may have been multiplied into its colours: if the map looks wrong, "
                   "save the "
                   "picture as PNG"});
    }
}

/// The library's normals have green up; a picture's own maker chose the direction when it was made.
void turn_green(Picture& normals)
{
    for (std::size_t i = 0; i < normals.texels(); ++i) {
        std::uint8_t& green = normals.texel(i)[1];
        green = static_cast<std::uint8_t>(255 - green);
    }
}

/// The map, on the job's device; if asked for, @p report is told how far from the processor's it is.
Picture make_map(Job const& job, Picture source, umbrix_options const& options, nlohmann::json& report)
{
    if (!job.compare_cpu) {
        return make_umbrix_map(std::move(source), options, job.scratch, nullptr, nullptr, job.graphics);
    }
    Picture map = make_umbrix_map(source, options, job.scratch, nullptr, nullptr, job.graphics);
    report["difference"] = largest_difference(map, make_umbrix_map(std::move(source), options, job.scratch));
    return map;
}

} // namespace

nlohmann::json run_map_task(Job const& job)
{
    PreparedInput input = prepare_input(job);
    check_relief_size(job.settings, input.width, input.height);
    OutputFormat const& format = *output_format(job.output);
    check_size(format, input.width, input.height);
    Kind const kind = job.kind.value_or(input.guess.kind);
    if (kind == Kind::kNormalMap) {
        note_normal_map(job, input);
        if (job.normal_y == NormalY::kDown) {
            turn_green(input.picture);
        }
    }

    umbrix_options const options = options_for(job.settings, kind, input.width);
    nlohmann::json report = {{"width", input.width},
                             {"height", input.height},
                             {"kind", kind},
                             {"guessed", !job.kind.has_value()},
                             {"reason", input.guess.reason},
                             {"n_scale", options.n_scale}};
    if (job.graphics.device) {
        report["device"] = open_device(job.graphics);
    }
    send_phase(Phase::kMaking);
    Picture const map = make_map(job, std::move(input.picture), options, report);
    write_picture(job.output, format, map);
    return report;
}

} // namespace umbrixlib::toolkit
