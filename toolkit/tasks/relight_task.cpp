// SPDX-License-Identifier: MIT
#include "toolkit/base/failure.h"
#include "toolkit/pictures/encode.h"
#include "toolkit/pictures/srgb.h"
#include "toolkit/settings/setting_table.h"
#include "toolkit/tasks/methods/relight.h"
#include "toolkit/tasks/methods/self_description.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/tasks.h"

#include <fmt/format.h>
#include <utility>

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

/// The colours of the surface, if there are any.
Picture albedo_for(RelightJob const& job, PreparedInput const& map, Observer& observer)
{
    if (job.albedo.empty()) {
        return {};
    }
    DecodedImage image = decode_input({job.albedo, job.albedo, job.files.max_texels}, observer);
    if (image.width() != map.width || image.height() != map.height) {
        throw Failure(Fault::kSizesDiffer, job.albedo,
                      fmt::format("its size is {} x {} and that of the map {} x {}", image.width(),
                                  image.height(), map.width, map.height));
    }
    return linear_colours(image.release_picture());
}

Picture picture_of(RelightJob const& job, LitSurface const& surface, Relighting const& look,
                   SavedAs const& as)
{
    return job.directions == 0
               ? relit(surface, job.light, look, as)
               : contact_sheet(turned(surface, job.light, look, job.directions, job.cell, as));
}

} // namespace

RelightReport run(RelightJob const& job, Observer& observer)
{
    JobFiles const& files = job.files;
    PreparedInput input = prepare_input({files.input, files.input, files.max_texels}, observer);
    OutputFormat const& format = *output_format(files.output.file);
    check_kind(job, input.picture.attributes);
    Relighting const look = look_of(job, input.picture.attributes, observer);
    SavedAs const as =
        saved_as_deep(input.type, files.output.saving, format, PictureKind::kLight, files.output.name);
    LitSurface surface{{}, albedo_for(job, input, observer)};
    surface.map = std::move(input.picture);
    observer.begin(Phase::kMaking, files.input);
    Picture lit = picture_of(job, surface, look, as);
    lit.attributes = attributes_of_light("relight");
    write_picture(files.output.file, format, files.output.name, lit, files.output.saving.compression,
                  observer);
    return {lit.width, lit.height};
}

} // namespace umbrixlib::toolkit
