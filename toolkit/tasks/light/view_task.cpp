// SPDX-License-Identifier: MIT
#include "toolkit/pages/light_page.h"
#include "toolkit/pictures/encode.h"
#include "toolkit/pictures/formats/jpeg/jpeg_segments.h"
#include "toolkit/pictures/png_bytes.h"
#include "toolkit/pictures/source_file.h"
#include "toolkit/settings/setting_table.h"
#include "toolkit/tasks/light/lit_map_input.h"
#include "toolkit/tasks/tasks.h"

#include <span>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

/// Browsers take 8 bits. Colours alone: what has an alpha would be seen through.
WebPicture as_png(Picture const& picture)
{
    Picture const colours = in_colour(picture, false);
    return {"image/png", png_bytes(converted(colours, {SampleType::kUint8, Rounding::kNearest, false}),
                                   Compression::kSmall)};
}

/// A JPEG stays as it is: as PNG it would be many times as large.
WebPicture albedo_for(ViewJob const& job, PreparedInput const& map, Observer& observer)
{
    if (job.albedo.empty()) {
        return {};
    }
    DecodedImage image = read_albedo({job.albedo, job.albedo, job.files.max_texels}, map, observer);
    if (image.format() == "JPEG") {
        SourceFile file(job.albedo, job.albedo, job.files.max_texels);
        if (auto bare = bare_jpeg(file.content())) {
            return {"image/jpeg", std::move(*bare)};
        }
    }
    return as_png(image.release_picture());
}

} // namespace

ViewReport run(ViewJob const& job, Observer& observer)
{
    JobFiles const& files = job.files;
    PreparedInput const input = prepare_input({files.input, files.input, files.max_texels}, observer);
    Modes const mode = mode_of_map(files.input, input.picture.attributes,
                                   {job.mode, job.mode_is_given, job.force}, observer);
    WebPicture albedo = albedo_for(job, input, observer);
    observer.begin(Phase::kMaking, files.input);
    std::string const html =
        html_of({job.title, name_of_mode(mode), as_png(input.picture), std::move(albedo)});
    std::span const bytes(reinterpret_cast<std::uint8_t const*>(html.data()), html.size());
    write_parts(files.output.file, files.output.name, {bytes}, observer);
    return {input.width, input.height, static_cast<double>(html.size())};
}

} // namespace umbrixlib::toolkit
