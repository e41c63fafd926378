// SPDX-License-Identifier: MIT
#include "toolkit/base/worker_channel.h"
#include "toolkit/pictures/encode.h"
#include "toolkit/tasks/job.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/relight.h"

#include <nlohmann/json.hpp>

namespace umbrixlib::toolkit {

nlohmann::json run_relight_task(Job const& job)
{
    PreparedInput const input = prepare_input(job);
    OutputFormat const& format = *output_format(job.output);
    Light const light{job.azimuth_degrees, job.elevation_degrees};
    Relighting const look{job.settings.mode, job.exposure};
    send_phase(Phase::kMaking);
    Picture const lit = job.directions == 0 ? relit(input.picture, light, look)
                                            : turntable(input.picture, light, look, job.directions, job.cell);
    write_picture(job.output, format, lit);
    return {{"width", lit.width}, {"height", lit.height}};
}

} // namespace umbrixlib::toolkit
