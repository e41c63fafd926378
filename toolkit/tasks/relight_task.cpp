// SPDX-License-Identifier: MIT
#include "toolkit/base/failure.h"
#include "toolkit/pictures/encode.h"
#include "toolkit/settings/setting_table.h"
#include "toolkit/tasks/methods/relight.h"
#include "toolkit/tasks/methods/self_description.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/tasks.h"

#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

void check_kind(RelightJob const& job, Attributes const& attributes)
{
    std::string const kind = kind_beside_map(attributes);
    if (!job.force && !kind.empty()) {
        throw Failure(Fault::kNoMap, job.files.input, fmt::format("it tells of itself that it is {}", kind));
    }
}

/// The job's mode, or the one that the map tells.
Relighting look_of(RelightJob const& job, Attributes const& attributes, Observer& observer)
{
    Relighting look = job.look;
    std::optional<Modes> const told = mode_of(attributes);
    if (told && !job.mode_is_given) {
        look.mode = *told;
    } else if (told && *told != look.mode) {
        observer.note(job.files.input,
                      {fmt::format("it tells of itself that its mode is {}, and is taken for {}",
                                   name_of_mode(*told), name_of_mode(look.mode))});
    }
    return look;
}

} // namespace

RelightReport run(RelightJob const& job, Observer& observer)
{
    JobFiles const& files = job.files;
    PreparedInput const input = prepare_input({files.input, files.input, files.max_texels}, observer);
    OutputFormat const& format = *output_format(files.output.file);
    check_kind(job, input.picture.attributes);
    Relighting const look = look_of(job, input.picture.attributes, observer);
    SavedAs const as = saved_as(files.output.saving, format, PictureKind::kLight, files.output.name);
    observer.begin(Phase::kMaking, files.input);
    Picture lit = job.directions == 0
                      ? relit(input.picture, job.light, look, as)
                      : turntable(input.picture, job.light, look, job.directions, job.cell, as);
    lit.attributes = attributes_of_light("relight");
    write_picture(files.output.file, format, files.output.name, lit, files.output.saving.compression,
                  observer);
    return {lit.width, lit.height};
}

} // namespace umbrixlib::toolkit
