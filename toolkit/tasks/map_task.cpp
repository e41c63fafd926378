// SPDX-License-Identifier: MIT
#include "toolkit/pictures/analysis/picture_difference.h"
#include "toolkit/pictures/encode.h"
#include "toolkit/pictures/naming.h"
#include "toolkit/tasks/makers.h"
#include "toolkit/tasks/methods/self_description.h"
#include "toolkit/tasks/methods/told_heights.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/runs/graphics_run.h"
#include "toolkit/tasks/runs/lost_light.h"
#include "toolkit/tasks/runs/map_picture.h"
#include "toolkit/tasks/tasks.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

/// A normal map whose alpha is the same everywhere describes flat ground.
bool has_relief_in_alpha(Picture const& picture)
{
    if (picture.channels < 4) {
        return false;
    }
    std::size_t const size = sample_size(picture.type);
    auto const* const alpha = &picture.bytes[3 * size];
    for (std::size_t i = 1; i < picture.texels(); ++i) {
        if (!std::equal(alpha, alpha + size, alpha + i * 4 * size)) {
            return true;
        }
    }
    return false;
}

void note_normal_map(MapJob const& job, PreparedInput const& input, Observer& observer)
{
    if (!has_relief_in_alpha(input.picture)) {
        bool const asks_for_heights =
            job.settings.occlusion || job.settings.generate_normal || job.settings.height_in_alpha;
        if (asks_for_heights) {
            observer.note(job.files.input, {"a normal map carries its heights in its alpha, and this one has "
                                            "none there: its ground counts as flat"});
        }
    }
}

/// Settles where green points in a normal map: as asked for, or as it tells itself.
void settle_green(std::optional<NormalY> const& known, NormalY by_settings, NameEnding const* ending,
                  MapReport& report)
{
    report.green_by_name = !known && ending != nullptr && ending->green;
    report.green = report.green_by_name ? *ending->green : known.value_or(by_settings);
}

/// The library's normals have green up; a picture's own maker chose the direction when it was made.
void turn_green(Picture& normals)
{
    auto const step = static_cast<std::size_t>(normals.channels);
    auto const turn = [step](auto greens, auto one) {
        for (std::size_t i = 1; i < greens.size(); i += step) {
            greens[i] = static_cast<decltype(one)>(one - greens[i]);
        }
    };
    switch (normals.type) {
    case SampleType::kUint8:
        return turn(normals.samples<std::uint8_t>(), std::uint8_t{255});
    case SampleType::kUint16:
        return turn(normals.samples<std::uint16_t>(), std::uint16_t{65535});
    case SampleType::kHalf:
        normals = in_floats(normals);
        [[fallthrough]];
    case SampleType::kFloat:
        return turn(normals.samples<float>(), 1.0f);
    }
}

/// The map, on the job's device; if asked for, @p report is told how far from the CPU's it is.
Picture make_map(MapJob const& job, Picture const& source, umbrix_options const& options, SavedAs const& as,
                 MapReport& report, Observer& observer)
{
    MapOrder order{source, job.files.input, options, as, borders_of(job.settings)};
    order.graphics = job.graphics;
    Picture map = make_umbrix_map(order, observer);
    if (job.compare_cpu) {
        order.graphics = {};
        report.difference = largest_difference(map, make_umbrix_map(order, observer));
    }
    return map;
}

} // namespace

MapMade make(MapJob const& job, PreparedInput input, SavedAs const& as, Observer& observer)
{
    JobFiles const& files = job.files;
    check_relief_size(job.settings, files.input, input.width, input.height);
    NameEnding const* const ending = ending_of_name(files.input);
    if (!job.kind) {
        note_unlike_its_name(files.input, input.guess, observer);
    }
    Kind const kind = job.kind.value_or(input.guess.kind);
    HeightReading const reading = height_reading_of(job.settings);
    Settings settings = job.settings;
    MapMade made;
    MapReport& report = made.report;
    if (kind == Kind::kHeightMap) {
        ToldHeights const told = told_heights(input.picture.attributes, reading);
        settings = in_unit(settings, told.unit);
        report.heights = take_for_heights(input, told.reading, files.input, observer);
    } else {
        auto const known = job.normal_y ? job.normal_y : green_of(input.picture.attributes);
        report.heights = take_for_normals(input, reading, files.input, observer);
        note_normal_map(job, input, observer);
        settle_green(known, job.settings.normal_y, ending, report);
        if (report.green == NormalY::kDown) {
            turn_green(input.picture);
        }
    }

    umbrix_options const options = options_for(settings, kind, input.width);
    report.width = input.width;
    report.height = input.height;
    report.kind = kind;
    report.guessed = !job.kind.has_value();
    report.reason = input.guess.reason;
    report.n_scale = options.n_scale;
    if (job.graphics.device) {
        report.device = open_device(job.graphics, files.input, observer);
    }
    if (job.settings.height_in_alpha) {
        note_narrowed_heights(input.type, as, files.input, observer);
    }
    observer.begin(Phase::kMaking, files.input);
    made.map = make_map(job, input.picture, options, as, report, observer);
    note_lost_light(made.map, files.input, {input.picture, settings, kind, false, job.graphics}, observer);
    made.map.attributes = attributes_of_map("map", job.settings);
    return made;
}

MapReport run(MapJob const& job, Observer& observer)
{
    JobFiles const& files = job.files;
    PreparedInput input = prepare_input({files.input, files.input, files.max_texels}, observer);
    OutputFormat const& format = *output_format(files.output.file);
    check_size(format, files.output.name, input.width, input.height);
    SavedAs const as = saved_as(files.output.saving, format, PictureKind::kLight, files.output.name);
    MapMade const made = make(job, std::move(input), as, observer);
    write_picture(files.output.file, format, files.output.name, made.map, files.output.saving.compression,
                  observer);
    return made.report;
}

} // namespace umbrixlib::toolkit
