// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encode.h"
#include "toolkit/tasks/makers.h"
#include "toolkit/tasks/methods/saved_picture.h"
#include "toolkit/tasks/methods/self_description.h"
#include "toolkit/tasks/methods/told_heights.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/runs/normals_run.h"
#include "toolkit/tasks/tasks.h"

#include <umbrixlib.h>
#include <utility>

namespace umbrixlib::toolkit {

NormalsMade make(NormalJob const& job, PreparedInput input, SavedAs const& as, Observer& observer)
{
    std::string const& name = job.files.input;
    note_normals_as_heights(name, input.guess, observer);
    ToldHeights const told = told_heights(input.picture.attributes, height_reading_of(job.settings));
    std::optional<HeightRange> const range = take_for_heights(input, told.reading, name, observer);

    observer.begin(Phase::kMaking, name);
    float const n_scale = n_scale_of(in_unit(job.settings, told.unit), input.width);
    NormalsResult const made = normals_of_heights(input.picture, n_scale, job.settings, name, observer);
    Picture normals = saved_normals(made.normals.get(), made.cols, made.rows, as, job.normal_y);
    normals.attributes = attributes_of_normals("normal", job.normal_y, as);
    return {std::move(normals), {input.width, input.height, n_scale, range}};
}

NormalReport run(NormalJob const& job, Observer& observer)
{
    JobFiles const& files = job.files;
    PreparedInput input = prepare_input({files.input, files.input, files.max_texels}, observer);
    OutputFormat const& format = *output_format(files.output.file);
    check_size(format, files.output.name, input.width, input.height);
    SavedAs const as = saved_as(files.output.saving, format, PictureKind::kNormals, files.output.name);
    NormalsMade const made = make(job, std::move(input), as, observer);
    write_picture(files.output.file, format, files.output.name, made.normals, files.output.saving.compression,
                  observer);
    return made.report;
}

} // namespace umbrixlib::toolkit
