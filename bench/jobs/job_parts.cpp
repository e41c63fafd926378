// SPDX-License-Identifier: MIT
#include "job_parts.h"

#include "measure/clocks.h"
#include "toolkit/pictures/decoded_image.h"
#include "toolkit/pictures/encoder.h"
#include "toolkit/pictures/output_format.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/runs/map_picture.h"
#include "toolkit/tasks/tasks.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace umbrixlib::bench {

using namespace toolkit;

namespace {

constexpr double kMostTexels = 1e9;

char const* name_of(Phase phase)
{
    switch (phase) {
    case Phase::kReading:
        return "reading";
    case Phase::kMaking:
        return "making";
    case Phase::kWriting:
        return "writing";
    case Phase::kChecking:
        return "checking";
    case Phase::kOpeningDevice:
        break;
    }
    return "opening the device";
}

/// Adds up the time between the beginnings of phases.
class PhaseClock : public Observer {
public:
    void begin(Phase phase, std::string const& /*file*/) override
    {
        finish();
        now_ = name_of(phase);
    }

    void finish()
    {
        double const time = wall_seconds();
        if (now_ != nullptr) {
            seconds[now_] += time - since_;
        }
        since_ = time;
    }

    Seconds seconds;

private:
    char const* now_ = nullptr;
    double since_ = 0.0;
};

double seconds_of_one(std::function<void()> run, Effort const& effort)
{
    return interleaved({{"", std::move(run)}}, effort, wall_seconds).at("");
}

Picture decoded(std::string const& file)
{
    return DecodedImage(file, file, kMostTexels).release_picture();
}

void encode(std::string const& file, Picture const& picture)
{
    if (!output_format(file)->encoder->encode(file, picture)) {
        std::fprintf(stderr, "cannot write %s\n", file.c_str());
        std::exit(1);
    }
}

} // namespace

Seconds phases_of(Job const& job, int rounds)
{
    std::map<std::string, std::vector<double>> samples;
    for (int i = 0; i < rounds; ++i) {
        PhaseClock clock;
        run(job, clock);
        clock.finish();
        for (auto const& [phase, seconds] : clock.seconds) {
            samples[phase].push_back(seconds);
        }
    }
    Seconds medians;
    for (auto& [phase, seconds] : samples) {
        medians[phase] = median(std::move(seconds));
    }
    return medians;
}

double decoding_seconds(std::string const& file, Effort const& effort)
{
    return seconds_of_one([&] { decoded(file); }, effort);
}

double encoding_seconds(std::string const& file, Effort const& effort)
{
    Picture const picture = decoded(file);
    std::filesystem::path const beside = std::filesystem::path(file).replace_filename(
        "again" + std::filesystem::path(file).extension().string());
    double const seconds = seconds_of_one([&] { encode(beside.string(), picture); }, effort);
    std::filesystem::remove(beside);
    return seconds;
}

Seconds parts_of(MapJob const& job, Effort const& effort)
{
    Observer nobody;
    PreparedInput const input =
        prepare_input({job.files.input, job.files.input, job.files.max_texels}, nobody);
    umbrix_options const options = options_for(job.settings, Kind::kHeightMap, input.width);
    auto const make = [&] {
        make_umbrix_map({input.picture, job.files.input, options, {}, borders_of(job.settings)}, nobody);
    };
    return {{"decode", decoding_seconds(job.files.input, effort)},
            {"library", seconds_of_one(make, effort)},
            {"encode", encoding_seconds(job.files.output.file, effort)}};
}

} // namespace umbrixlib::bench
