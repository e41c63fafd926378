// SPDX-License-Identifier: MIT
#include "toolkit/base/failure.h"
#include "toolkit/checks/find_clipping.h"
#include "toolkit/checks/find_jpeg_blocks.h"
#include "toolkit/checks/find_light.h"
#include "toolkit/checks/find_seams.h"
#include "toolkit/checks/find_steps.h"
#include "toolkit/checks/mend_normals.h"
#include "toolkit/pictures/encode.h"
#include "toolkit/tasks/makers.h"
#include "toolkit/tasks/methods/self_description.h"
#include "toolkit/tasks/methods/slopes_of_normals.h"
#include "toolkit/tasks/methods/taken_for.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/tasks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

void find_invalid(Picture const& picture, Findings& findings)
{
    if (picture.type != SampleType::kHalf && picture.type != SampleType::kFloat) {
        return;
    }
    Tally invalid;
    with_samples(picture, [&](auto samples) {
        auto const step = static_cast<std::size_t>(picture.channels);
        auto const width = static_cast<std::size_t>(picture.width);
        std::size_t const colours = step < 3 ? 1 : 3;
        for (std::size_t i = 0; i < picture.texels(); ++i) {
            auto const* const texel = &samples[i * step];
            if (!std::all_of(texel, texel + colours,
                             [](auto each) { return std::isfinite(to_number(each)); })) {
                invalid.add(i % width, i / width);
            }
        }
    });
    if (invalid.count() > 0) {
        findings.push_back({"invalid-texels",
                            fmt::format("samples are NaN or infinite: {}",
                                        in_words(invalid, picture.texels(), picture.height)),
                            invalid.count(), invalid.share(picture.texels()), invalid.first(picture.height)});
    }
}

/// The mode that counts, if the map has light that can be checked: grading makes any light of it.
std::optional<Modes> mode_to_check(CheckJob const& job, Picture const& map)
{
    bool const is_graded =
        std::ranges::any_of(std::array{"contrast", "min", "max", "brightness"},
                            [&](char const* key) { return !value_of(map.attributes, key).empty(); });
    if (is_graded || value_of(map.attributes, "light") == "false" || map.channels < 3) {
        return std::nullopt;
    }
    return job.mode ? job.mode : mode_of(map.attributes);
}

/// Of rays, not of light: a map without light has as many levels as there are rays.
bool has_light(Picture const& picture)
{
    return value_of(picture.attributes, "light") != "false";
}

void check_normals(CheckJob const& job, Picture const& normals, NormalCode const& code, NormalSums& sums,
                   CheckReport& report)
{
    sums = sums_of_normals(normals, code);
    GreenTold const told = green_of_slopes(sums);
    report.green = told.green;
    report.green_times = told.times;
    bool const dithered = !value_of(normals.attributes, "rounding").empty();
    find_in_normals(normals, sums, job.normal_y, dithered, report.findings);
}

/// A copy without what can be mended exactly; without texels if there is nothing of that.
Picture mended_copy(CheckJob const& job, Picture normals, NormalCode const& code, NormalSums const& sums,
                    CheckReport& report)
{
    report.mended = mend_normals(normals, code, sums, report.findings);
    if (report.mended.empty()) {
        return {};
    }
    if (std::ranges::find(report.mended, "green-direction") != report.mended.end()) {
        set_value(normals.attributes, "green", *job.normal_y == NormalY::kUp ? "up" : "down");
    }
    normals.kind = PictureKind::kNormals;
    return normals;
}

void write_mended(Output const& output, Picture const& normals, Observer& observer)
{
    OutputFormat const& format = *output_format(output.file);
    check_size(format, output.name, normals.width, normals.height);
    Saving saving = output.saving;
    saving.depth = nearest_depth(format, normals.type);
    SavedAs const as = saved_as(saving, format, PictureKind::kNormals, output.name);
    write_picture(output.file, format, output.name,
                  as.depth == normals.type ? normals : converted(normals, as), saving.compression, observer);
}

} // namespace

CheckMade make(CheckJob const& job, DecodedImage image, bool mend, Observer& observer)
{
    std::string const& name = job.files.input;
    observer.begin(Phase::kMaking, name);
    CheckMade made;
    CheckReport& report = made.report;
    report.width = image.width();
    report.height = image.height();
    TakenFor const taken = job.kind ? TakenFor{*job.kind, ""} : taken_for(image, name);
    report.taken_for = taken.kind;
    report.because = taken.because;
    bool const wants_colour = taken.kind == PictureKind::kNormals || taken.kind == PictureKind::kLight;
    Picture const picture = wants_colour && image.picture().channels < 3 ? image.to_picture(image.has_alpha())
                                                                         : image.release_picture();
    Findings& findings = report.findings;
    find_invalid(picture, findings);
    NormalCode code{};
    NormalSums sums;
    switch (taken.kind) {
    case PictureKind::kNormals: {
        NormalReading const reading = reading_of_normals(picture);
        code = {reading.scale, reading.offset};
        check_normals(job, picture, code, sums, report);
        break;
    }
    case PictureKind::kLight:
        report.mode = mode_to_check(job, picture);
        if (report.mode) {
            find_impossible_light(picture, *report.mode, findings);
        }
        break;
    case PictureKind::kHeights:
        find_clipping(picture, findings);
        break;
    default:
        findings.push_back({"lit-picture", "it is a picture of a map in a light, and no map", 0, 1.0});
        return made;
    }
    if (has_light(picture)) {
        find_steps(picture, taken.kind, findings);
    }
    find_jpeg_blocks(picture, findings);
    find_seams(picture, job.h_tile, job.v_tile, findings);
    if (taken.kind == PictureKind::kNormals && mend) {
        made.mended = mended_copy(job, picture, code, sums, report);
    }
    return made;
}

CheckReport run(CheckJob const& job, Observer& observer)
{
    std::string const& name = job.files.input;
    Output const& output = job.files.output;
    DecodedImage image = decode_input({name, name, job.files.max_texels}, observer);
    CheckMade const made = make(job, std::move(image), !output.file.empty(), observer);
    if (made.mended.texels() > 0) {
        write_mended(output, made.mended, observer);
    }
    return made.report;
}

} // namespace umbrixlib::toolkit
