// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encode.h"
#include "toolkit/tasks/methods/relight.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/tasks.h"

namespace umbrixlib::toolkit {

RelightReport run(RelightJob const& job, Observer& observer)
{
    JobFiles const& files = job.files;
    PreparedInput const input = prepare_input({files.input, files.input, files.max_texels}, observer);
    OutputFormat const& format = *output_format(files.output.file);
    observer.begin(Phase::kMaking, files.input);
    Picture const lit = job.directions == 0
                            ? relit(input.picture, job.light, job.look)
                            : turntable(input.picture, job.light, job.look, job.directions, job.cell);
    write_picture(files.output.file, format, files.output.name, lit, observer);
    return {lit.width, lit.height};
}

} // namespace umbrixlib::toolkit
