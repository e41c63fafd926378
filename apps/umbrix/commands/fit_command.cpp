// SPDX-License-Identifier: MIT
#include "commands/fit_command.h"

#include "options/setting_options.h"
#include "terminal/complaint.h"
#include "terminal/kind_name.h"
#include "terminal/report_json.h"
#include "terminal/say.h"
#include "terminal/standard_output.h"
#include "toolkit/files/preflight.h"
#include "toolkit/files/text_file.h"
#include "toolkit/settings/preset.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace umbrix_cli {

namespace {

constexpr char const* kFitCommand = "umbrix fit";

char const* name_of_heights(bool inverted)
{
    return inverted ? "inverted" : "as they are";
}

void print_text(std::string const& heights, std::string const& normals, FitReport const& report)
{
    NormalY const other = report.green == NormalY::kUp ? NormalY::kDown : NormalY::kUp;
    say("{} to {}, {} x {}", heights, normals, report.width, report.height);
    say("  relief     {} image widths, n-scale {}, gaussian {}", report.relief, report.n_scale,
        report.gaussian);
    say("  heights    {} ({} {:.2f} degrees would remain)", name_of_heights(report.inverted),
        name_of_heights(!report.inverted), report.other_heights_mean_angle_degrees);
    say("  green      {} (with {} {:.2f} degrees would remain)", name_of(report.green), name_of(other),
        report.other_green_mean_angle_degrees);
    say("  mean angle {:.2f} degrees, {:.2f} of flat ground", report.mean_angle_degrees,
        report.flat_mean_angle_degrees);
}

Complaint no_fit(std::string const& normals, FitReport const& report)
{
    return {
        normals,
        fmt::format("no relief fits it: {:.2f} degrees remain at best, and {:.2f} on flat ground, which is a "
                    "gain of less than 10 %",
                    report.mean_angle_degrees, report.flat_mean_angle_degrees),
        "check that the two pictures show the same material"};
}

} // namespace

void FitCommand::declare(CLI::App& command)
{
    common_.declare_input(command, "Height map", "HEIGHT");
    common_.declare_progress(command);
    command.add_option("NORMAL", normals_, "Normal map of the same size")->required()->type_name("");
    command.add_flag("--json", json_, "Write one JSON object instead of text");
    command
        .add_option("--save-preset", preset_output_,
                    "Write the relief and the directions of heights and green that were found into a "
                    "preset, with the "
                    "other options of --preset")
        ->type_name("FILE")
        ->group(kFilesGroup);
    command.add_flag("--overwrite", common_.overwrite, "Replace that file if it exists")->group(kFilesGroup);
    declare_options(command, settings_, kForFit | kForHeights);
    command.add_flag("--fit-gaussian", fit_gaussian_, "Find the sigma of the blur, too [0 to 10 texels]")
        ->excludes(command.get_option("--gaussian"))
        ->group("Relief");
}

void FitCommand::save(FitReport const& report) const
{
    Settings settings = settings_;
    settings.relief = static_cast<float>(report.relief);
    settings.h_scale = std::nullopt; // both follow from the relief on pictures of every size
    settings.n_scale = std::nullopt;
    settings.gaussian = static_cast<float>(report.gaussian);
    settings.normal_y = report.green;
    settings.invert = settings_.invert != report.inverted;
    std::string const description = fmt::format("Fitted to {}: {:.2f} degrees remain, {:.2f} of flat ground",
                                                std::filesystem::path(normals_).filename().string(),
                                                report.mean_angle_degrees, report.flat_mean_angle_degrees);
    write_text_file(preset_output_,
                    preset_text({is_one_line(description) ? description : "Fitted", settings}),
                    common_.overwrite);
}

void FitCommand::run(Interrupts const& interrupts)
{
    check_input(common_.input);
    check_input(normals_);
    if (!preset_output_.empty()) {
        check_preset_output(preset_output_, common_.overwrite);
    }
    FitJob job;
    job.heights = common_.input;
    job.normals = normals_;
    job.max_texels = common_.max_texels;
    job.settings = settings_;
    job.fit_gaussian = fit_gaussian_;
    FitReport const report = supervise(job, common_.supervision(kFitCommand, interrupts));
    interrupts.check();
    if (json_) {
        say_json(json_of(report, common_.input, normals_), 2);
    } else if (report.beats_flat) {
        print_text(common_.input, normals_, report);
    }
    if (!report.beats_flat) {
        finish_standard_output();
        throw no_fit(normals_, report);
    }
    if (!preset_output_.empty()) {
        save(report);
        if (!json_) {
            say("wrote {}: preset, relief {}, {:.2f} degrees remain", preset_output_, report.relief,
                report.mean_angle_degrees);
        }
    }
}

} // namespace umbrix_cli
