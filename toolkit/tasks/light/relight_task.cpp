// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encode.h"
#include "toolkit/pictures/png_bytes.h"
#include "toolkit/pictures/srgb.h"
#include "toolkit/tasks/light/lit_map_input.h"
#include "toolkit/tasks/light/relight.h"
#include "toolkit/tasks/methods/self_description.h"
#include "toolkit/tasks/tasks.h"

#include <utility>
#include <vector>

namespace umbrixlib::toolkit {

namespace {

/// The colours of the surface, if there are any.
Picture albedo_for(RelightJob const& job, PreparedInput const& map, Observer& observer)
{
    if (job.albedo.empty()) {
        return {};
    }
    Source const source{job.albedo, job.albedo, job.files.max_texels};
    return linear_colours(read_albedo(source, map, observer).release_picture());
}

/// One picture, or those of a turn.
std::vector<Picture> pictures_of(RelightJob const& job, LitSurface const& surface, Relighting const& look,
                                 SavedAs const& as)
{
    std::vector<Picture> pictures;
    if (job.directions == 0) {
        pictures.push_back(relit(surface, job.light, look, as));
    } else {
        pictures = turned(surface, job.light, look, job.directions, job.cell, as);
    }
    if (job.seconds == 0.0 && job.directions > 0) {
        pictures = {contact_sheet(pictures)};
    }
    pictures.front().attributes = attributes_of_light("relight");
    return pictures;
}

} // namespace

RelightReport run(RelightJob const& job, Observer& observer)
{
    JobFiles const& files = job.files;
    PreparedInput input = prepare_input({files.input, files.input, files.max_texels}, observer);
    OutputFormat const& format = *output_format(files.output.file);
    Relighting look = job.look;
    look.mode = mode_of_map(files.input, input.picture.attributes, {look.mode, job.mode_is_given, job.force},
                            observer);
    SavedAs const as =
        saved_as_deep(input.type, files.output.saving, format, PictureKind::kLight, files.output.name);
    LitSurface surface{{}, albedo_for(job, input, observer)};
    surface.map = std::move(input.picture);
    observer.begin(Phase::kMaking, files.input);
    std::vector<Picture> const lit = pictures_of(job, surface, look, as);
    Output const& output = files.output;
    if (lit.size() == 1) {
        write_picture(output.file, format, output.name, lit.front(), output.saving.compression, observer);
    } else {
        auto const bytes = animated_png_bytes(lit, job.seconds / job.directions, output.saving.compression);
        write_parts(output.file, output.name, {bytes}, observer);
    }
    return {lit.front().width, lit.front().height};
}

} // namespace umbrixlib::toolkit
