// SPDX-License-Identifier: MIT
#include "commands/relief/bent_command.h"

#include "options/normal_y_option.h"
#include "options/saving_options.h"
#include "options/setting_options.h"
#include "terminal/height_words.h"
#include "terminal/kind_name.h"
#include "terminal/say.h"

namespace umbrix_cli {

void BentCommand::declare(CLI::App& command)
{
    common_.declare_output(command, "INPUT_Bent beside the input, the bent normals");
    common_.declare_input(command, "Height map; of a coloured picture the mean of the colours counts");
    command.add_option("--occlusion", occlusion_output_, "File for the occlusion map of one channel")
        ->type_name("FILE")
        ->group(kFilesGroup);
    declare_normal_y(command, normal_y_, "Where green points in the bent normals that are written")
        ->group("Relief");
    declare_options(command, settings_, kForBent | kForHeights);
    declare_profile(command, profile_);
}

void BentCommand::run(Interrupts const& interrupts)
{
    follow_profile(profile_, ProfileMap::kBent, common_, settings_);
    common_.saving = with_depth(common_.saving, settings_.save_depth);
    BentJob job;
    job.settings = settings_;
    job.normal_y = normal_y_.value_or(settings_.normal_y);
    Made<BentJob> const made =
        make_picture_file("umbrix bent", common_, job, "_Bent", interrupts,
                          SecondOutput<BentJob>{occlusion_output_, &BentJob::occlusion});
    BentReport const& report = made.report;
    say("wrote {}: bent normals, {} x {}, green {}, {} directions, relief {:.4g}{}, {:.1f} s",
        made.output.string(), report.width, report.height, name_of(job.normal_y), settings_.directions,
        static_cast<double>(report.h_scale), told(report.heights), made.seconds);
    if (!occlusion_output_.empty()) {
        say("wrote {}: occlusion map of the same, {:.1f} % of the sky is open", occlusion_output_,
            100.0 * report.open);
    }
}

} // namespace umbrix_cli
