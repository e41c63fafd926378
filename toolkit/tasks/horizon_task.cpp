// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encode.h"
#include "toolkit/relief/sky.h"
#include "toolkit/tasks/methods/height_plane.h"
#include "toolkit/tasks/methods/self_description.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/runs/library_run.h"
#include "toolkit/tasks/tasks.h"

#include <algorithm>

namespace umbrixlib::toolkit {

namespace {

constexpr int kChannels = 4;

/// Four of the eight directions.
struct HorizonOutput {
    Output const& output;
    int first; ///< Number of the first direction.
    OutputFormat const& format;
    SavedAs as;
};

HorizonOutput horizon_output(Output const& output, int first, PreparedInput const& input)
{
    OutputFormat const& format = *output_format(output.file);
    check_size(format, output.name, input.width, input.height);
    SavedAs const as = saved_as(output.saving, format, PictureKind::kLight, output.name);
    if (!format.alpha) {
        throw no_alpha(format, output.name);
    }
    return {output, first, format, as};
}

std::vector<HorizonOutput> outputs_of(HorizonJob const& job, PreparedInput const& input)
{
    std::vector<HorizonOutput> outputs;
    outputs.push_back(horizon_output(job.files.output, job.later_alone ? kChannels : 0, input));
    if (!job.later.file.empty()) {
        outputs.push_back(horizon_output(job.later, kChannels, input));
    }
    return outputs;
}

Picture horizons(HorizonJob const& job, ReliefInput const& relief, HorizonOutput const& to,
                 Observer& observer)
{
    std::optional<std::vector<float>> sines;
    run_in_memory(job.files.input, observer, [&](RunControl& control) {
        control.enter(kFindingHorizons);
        sines = horizon_sines(relief.plane(), relief.reach, to.first, &control);
        return sines ? Outcome::kDone : Outcome::kStopped;
    });
    Picture floats = make_picture(relief.width, relief.height, kChannels, SampleType::kFloat);
    floats.kind = PictureKind::kLight;
    std::ranges::copy(*sines, floats.samples<float>().begin());
    Picture picture = in_samples(std::move(floats), to.as);
    picture.attributes = attributes_of_sky("horizon", "horizons", job.settings);
    set_value(picture.attributes, "directions", to.first == 0 ? "0,45,90,135" : "180,225,270,315");
    return picture;
}

} // namespace

HorizonReport run(HorizonJob const& job, Observer& observer)
{
    std::string const& name = job.files.input;
    PreparedInput input = prepare_input({name, name, job.files.max_texels}, observer);
    std::vector<HorizonOutput> const outputs = outputs_of(job, input);
    ReliefInput const relief = relief_input(input, job.settings, name, observer);
    observer.begin(Phase::kMaking, name);
    for (HorizonOutput const& to : outputs) {
        write_picture(to.output.file, to.format, to.output.name, horizons(job, relief, to, observer),
                      to.output.saving.compression, observer);
    }
    return {relief.width, relief.height, relief.h_scale, relief.range};
}

} // namespace umbrixlib::toolkit
