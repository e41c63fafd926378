// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encode.h"
#include "toolkit/pictures/heights/take_heights.h"
#include "toolkit/tasks/methods/self_description.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/tasks.h"

#include <fmt/format.h>
#include <utility>

namespace umbrixlib::toolkit {

ConvertReport run(ConvertJob const& job, Observer& observer)
{
    JobFiles const& files = job.files;
    std::string const& name = files.input;
    DecodedImage image = decode_input({name, name, files.max_texels}, observer);
    for (std::string const& note : image.notes()) {
        observer.note(name, {note});
    }
    ConvertReport report;
    report.width = image.width();
    report.height = image.height();
    report.from = fmt::format("{} {}", image.description(), image.format());
    OutputFormat const& format = *output_format(files.output.file);
    check_size(format, files.output.name, image.width(), image.height());
    Picture picture = image.release_picture();
    SavedAs const as =
        saved_as_deep(picture.type, files.output.saving, format, PictureKind::kUnknown, files.output.name);

    observer.begin(Phase::kMaking, name);
    if (job.channel) {
        picture = channel_of(picture, *job.channel, name);
    } else if (is_whole(as.depth)) {
        encode_vectors(picture, name, observer);
    }
    Attributes attributes = std::move(picture.attributes);
    if (picture.type != as.depth && value_of(attributes, "kind") == "normals") {
        tell_rounding(attributes, as);
    }
    report.heights = take_colours(picture, job.reading, is_whole(as.depth), name, observer);
    picture = converted(picture, as);
    if (job.reading == HeightReading{} && !job.channel) {
        picture.attributes = std::move(attributes); // it is still what it tells
    }
    if (picture.has_alpha() && !format.alpha) {
        observer.note(name, {fmt::format("its alpha is left out, as {} files have none", format.extension)});
    }
    report.to = description_of(picture);
    write_picture(files.output.file, format, files.output.name, picture, files.output.saving.compression,
                  observer);
    return report;
}

} // namespace umbrixlib::toolkit
