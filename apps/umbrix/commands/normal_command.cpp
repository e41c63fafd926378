// SPDX-License-Identifier: MIT
#include "commands/normal_command.h"

#include "options/normal_y_option.h"
#include "options/saving_options.h"
#include "options/setting_options.h"
#include "terminal/height_words.h"
#include "terminal/kind_name.h"
#include "terminal/say.h"

namespace umbrix_cli {

void NormalCommand::declare(CLI::App& command)
{
    common_.declare_output(command, "INPUT_Normal beside the input");
    common_.declare_input(command, "Height map; of a coloured picture the mean of the colours counts");
    declare_normal_y(command, normal_y_, "Where green points in the normal map that is written")
        ->group("Relief");
    declare_options(command, settings_, kForNormal | kForHeights);
    declare_profile(command, profile_);
    command.get_option("--detail")->group(""); // taken, as it always was, and without an effect
}

void NormalCommand::run(Interrupts const& interrupts)
{
    follow_profile(profile_, ProfileMap::kNormals, common_, settings_);
    common_.saving = with_depth(common_.saving, settings_.save_depth);
    NormalJob job;
    job.settings = settings_;
    job.normal_y = normal_y_.value_or(settings_.normal_y);
    Made<NormalJob> const made = make_picture_file("umbrix normal", common_, job, "_Normal", interrupts);
    say("wrote {}: normal map, {} x {}, green {}, n-scale {:.4g}{}, {:.1f} s", made.output.string(),
        made.report.width, made.report.height, name_of(job.normal_y),
        static_cast<double>(made.report.n_scale), told(made.report.heights), made.seconds);
}

} // namespace umbrix_cli
