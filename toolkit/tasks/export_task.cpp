// SPDX-License-Identifier: MIT
#include "toolkit/base/failure.h"
#include "toolkit/pictures/heights/take_heights.h"
#include "toolkit/pictures/naming.h"
#include "toolkit/tasks/methods/taken_for.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/runs/library_run.h"
#include "toolkit/tasks/tasks.h"
#include "toolkit/textures/texture_file.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

/// Whether red, green and blue of each texel are the same.
bool has_equal_colours(Picture const& picture)
{
    return picture.channels < 3 || with_samples(picture, [&](auto samples) {
               for (std::size_t i = 0; i < samples.size(); i += static_cast<std::size_t>(picture.channels)) {
                   double const red = to_number(samples[i]);
                   if (red != to_number(samples[i + 1]) || red != to_number(samples[i + 2])) {
                       return false;
                   }
               }
               return true;
           });
}

/// What the picture is: normals, heights in one channel, or unknown, which is any other data.
TakenFor data_in(ExportJob const& job, DecodedImage const& image)
{
    std::string const& name = job.files.input;
    if (job.channel) {
        return {PictureKind::kHeights, ""};
    }
    if (job.kind) {
        return {*job.kind == PictureKind::kLight ? PictureKind::kUnknown : *job.kind, ""};
    }
    TakenFor taken = taken_for(image, name);
    if (taken.kind == PictureKind::kNormals) {
        return taken;
    }
    auto const hint = hint_of_name(name);
    bool const is_called_heights = hint && hint->kind == Kind::kHeightMap;
    if (taken.kind == PictureKind::kHeights && (is_called_heights || has_equal_colours(image.picture()))) {
        return taken;
    }
    return {PictureKind::kUnknown, taken.because};
}

TextureFormat usual_format(PictureKind kind)
{
    return kind == PictureKind::kNormals   ? TextureFormat::kBc5
           : kind == PictureKind::kHeights ? TextureFormat::kBc4
                                           : TextureFormat::kBc7;
}

/// A Failure unless @p format holds pictures of @p kind.
void check_format(TextureFormat format, PictureKind kind, std::string const& name)
{
    if (format == TextureFormat::kBc5 && kind != PictureKind::kNormals) {
        throw Failure(Fault::kNotInTextureFormat, name, "BC5 is for normals, and it is taken for none",
                      kTextureFormatNames[static_cast<int>(usual_format(kind))]);
    }
    if (format == TextureFormat::kBc4 && kind != PictureKind::kHeights) {
        throw Failure(Fault::kNotInTextureFormat, name, "BC4 holds one channel, and it has more",
                      kTextureFormatNames[static_cast<int>(usual_format(kind))]);
    }
}

/// Normals as colours, 0 to 1 in all samples.
Picture normals_in(DecodedImage& image, ExportJob const& job, Observer& observer)
{
    std::string const& name = job.files.input;
    Picture normals =
        image.picture().channels < 3 ? image.to_picture(image.has_alpha()) : image.release_picture();
    if (are_vectors(normals, name)) {
        normals = encoded_vectors(normals);
    }
    if (flatten_invalid_normals(normals, job.reading.invalid.replacement.has_value(), name) > 0) {
        observer.note(name, {"what is NaN or infinite in its normals is taken for flat ground"});
    }
    normals.kind = PictureKind::kNormals;
    return normals;
}

/// Other data, of one channel, three or four. An alpha beside equal colours stays where there is room.
Picture data_from(DecodedImage& image, ExportJob const& job, TextureFormat format, ExportReport& report,
                  Observer& observer)
{
    std::string const& name = job.files.input;
    Picture picture = image.release_picture();
    bool const is_guessed = !job.channel && !job.kind;
    if (is_guessed && picture.has_alpha() && format != TextureFormat::kBc4) {
        report.taken_for = PictureKind::kUnknown;
    }
    if (job.channel || (report.taken_for == PictureKind::kHeights && picture.channels != 1)) {
        bool const loses_alpha = !job.channel && picture.has_alpha();
        picture = channel_of(picture, job.channel.value_or(HeightChannel::kMean), name);
        if (loses_alpha) {
            observer.note(name, {"its alpha is left out, as it is taken for heights in one channel"});
        }
    } else if (picture.channels == 2) {
        picture = in_colour(picture, true);
    }
    if (picture.channels == 1 && format == TextureFormat::kBc7) {
        picture = in_colour(picture, false);
    }
    bool const bounded = format != TextureFormat::kHalf;
    report.heights = take_colours(picture, job.reading, bounded, name, observer);
    picture.kind = report.taken_for;
    return picture;
}

} // namespace

ExportReport run(ExportJob const& job, Observer& observer)
{
    JobFiles const& files = job.files;
    DecodedImage image = decode_input({files.input, files.input, files.max_texels}, observer);
    for (std::string const& note : image.notes()) {
        observer.note(files.input, {note});
    }
    TakenFor const data = data_in(job, image);
    TextureFormat const format = job.format.value_or(usual_format(data.kind));
    check_format(format, data.kind, files.input);
    ExportReport report;
    report.width = image.width();
    report.height = image.height();
    report.taken_for = data.kind;
    report.because = data.because;
    Picture const picture = data.kind == PictureKind::kNormals
                                ? normals_in(image, job, observer)
                                : data_from(image, job, format, report, observer);
    report.channels = picture.channels;
    if (format == TextureFormat::kBc5 && picture.has_alpha()) {
        observer.note(files.input, {"its alpha is left out, as BC5 has two channels"});
    }

    observer.begin(Phase::kMaking, files.input);
    std::optional<Texture> texture;
    run_in_memory(files.input, observer, [&](RunControl& control) {
        control.enter(kMakingTexture);
        texture = make_texture(picture, format, job.levels, &control);
        return texture ? Outcome::kDone : Outcome::kStopped;
    });
    report.form = texture->form.name;
    report.levels = static_cast<int>(texture->levels.size());
    report.bytes = texture->size();
    write_texture(files.output.file, texture_container(files.output.file), files.output.name, *texture,
                  observer);
    return report;
}

} // namespace umbrixlib::toolkit
