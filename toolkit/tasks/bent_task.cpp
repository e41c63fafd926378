// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encode.h"
#include "toolkit/relief/sky.h"
#include "toolkit/tasks/makers.h"
#include "toolkit/tasks/methods/height_plane.h"
#include "toolkit/tasks/methods/saved_picture.h"
#include "toolkit/tasks/methods/self_description.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/runs/library_run.h"
#include "toolkit/tasks/tasks.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

/// An output of the job, whose format and samples are known.
struct SkyOutput {
    Output const& output;
    OutputFormat const& format;
    SavedAs as;
};

std::optional<SkyOutput> output_as(Output const& output, PictureKind kind, PreparedInput const& input)
{
    if (output.file.empty()) {
        return std::nullopt;
    }
    OutputFormat const& format = *output_format(output.file);
    check_size(format, output.name, input.width, input.height);
    return SkyOutput{output, format, saved_as(output.saving, format, kind, output.name)};
}

std::optional<SavedAs> samples_of(std::optional<SkyOutput> const& output)
{
    return output ? std::optional(output->as) : std::nullopt;
}

void write(SkyOutput const& to, Picture const& picture, Observer& observer)
{
    write_picture(to.output.file, to.format, to.output.name, picture, to.output.saving.compression, observer);
}

SkyMap make_sky(BentJob const& job, ReliefInput const& relief, Observer& observer)
{
    std::optional<SkyMap> made;
    run_in_memory(job.files.input, observer, [&](RunControl& control) {
        control.enter(kFindingHorizons);
        made = sky_over(relief.plane(), relief.reach, job.settings.directions, &control);
        return made ? Outcome::kDone : Outcome::kStopped;
    });
    return *std::move(made);
}

Picture bent_picture(SkyMap& sky, ReliefInput const& relief, BentJob const& job, SavedAs const& as)
{
    if (job.normal_y == NormalY::kDown) {
        std::ranges::for_each(sky.bent, [](float3& each) { each.y = -each.y; });
    }
    Picture picture = saved_normals(sky.bent.data(), relief.width, relief.height, as);
    picture.attributes = attributes_of_sky("bent", "bent normals", job.settings);
    tell_normals(picture.attributes, job.normal_y, as);
    return picture;
}

Picture occlusion_picture(SkyMap const& sky, ReliefInput const& relief, BentJob const& job, SavedAs const& as)
{
    Picture floats = make_picture(relief.width, relief.height, 1, SampleType::kFloat);
    floats.kind = PictureKind::kLight;
    std::ranges::copy(sky.open, floats.samples<float>().begin());
    Picture picture = in_samples(std::move(floats), as);
    picture.attributes = attributes_of_sky("bent", "occlusion", job.settings);
    return picture;
}

} // namespace

BentMade make(BentJob const& job, PreparedInput input, std::optional<SavedAs> const& bent,
              std::optional<SavedAs> const& occlusion, Observer& observer)
{
    std::string const& name = job.files.input;
    ReliefInput const relief = relief_input(input, job.settings, name, observer);
    observer.begin(Phase::kMaking, name);
    SkyMap sky = make_sky(job, relief, observer);
    double const open = std::accumulate(sky.open.begin(), sky.open.end(), 0.0);
    BentMade made;
    made.report = {relief.width, relief.height, relief.h_scale, relief.range,
                   open / static_cast<double>(sky.open.size())};
    if (occlusion) {
        made.occlusion = occlusion_picture(sky, relief, job, *occlusion);
    }
    if (bent) {
        made.bent = bent_picture(sky, relief, job, *bent);
    }
    return made;
}

BentReport run(BentJob const& job, Observer& observer)
{
    std::string const& name = job.files.input;
    PreparedInput input = prepare_input({name, name, job.files.max_texels}, observer);
    Output const none;
    auto const bent = output_as(job.occlusion_alone ? none : job.files.output, PictureKind::kNormals, input);
    auto const occlusion =
        output_as(job.occlusion_alone ? job.files.output : job.occlusion, PictureKind::kLight, input);
    BentMade const made = make(job, std::move(input), samples_of(bent), samples_of(occlusion), observer);
    if (occlusion) {
        write(*occlusion, made.occlusion, observer);
    }
    if (bent) {
        write(*bent, made.bent, observer);
    }
    return made.report;
}

} // namespace umbrixlib::toolkit
