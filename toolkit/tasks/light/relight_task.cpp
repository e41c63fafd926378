// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encode.h"
#include "toolkit/pictures/png_bytes.h"
#include "toolkit/pictures/srgb.h"
#include "toolkit/tasks/light/lit_map_input.h"
#include "toolkit/tasks/light/relight.h"
#include "toolkit/tasks/makers.h"
#include "toolkit/tasks/methods/self_description.h"
#include "toolkit/tasks/tasks.h"

#include <utility>
#include <vector>

namespace umbrixlib::toolkit {

namespace {

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

std::vector<Picture> make(RelightJob const& job, PreparedInput input, Picture albedo, SavedAs const& as,
                          Observer& observer)
{
    std::string const& name = job.files.input;
    Relighting look = job.look;
    look.mode =
        mode_of_map(name, input.picture.attributes, {look.mode, job.mode_is_given, job.force}, observer);
    LitSurface surface{std::move(input.picture), {}};
    if (albedo.texels() > 0) {
        surface.albedo = linear_colours(std::exchange(albedo, {}));
    }
    observer.begin(Phase::kMaking, name);
    return pictures_of(job, surface, look, as);
}

RelightReport run(RelightJob const& job, Observer& observer)
{
    JobFiles const& files = job.files;
    PreparedInput input = prepare_input({files.input, files.input, files.max_texels}, observer);
    OutputFormat const& format = *output_format(files.output.file);
    SavedAs const as =
        saved_as_deep(input.type, files.output.saving, format, PictureKind::kLight, files.output.name);
    Picture albedo;
    if (!job.albedo.empty()) {
        albedo = read_albedo({job.albedo, job.albedo, files.max_texels}, input, observer).release_picture();
    }
    std::vector<Picture> const lit = make(job, std::move(input), std::move(albedo), as, observer);
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
