// SPDX-License-Identifier: MIT
#include "commands/normal_command.h"

#include "options/normal_y_option.h"
#include "options/setting_options.h"
#include "terminal/say.h"

namespace umbrix_cli {

CLI::App* NormalCommand::declare(CLI::App& app)
{
    CLI::App* const command =
        app.add_subcommand("normal", "Make a tangent-space normal map from a height map");
    common_.declare_output(*command, "INPUT_Normal beside the input");
    common_.declare_input(*command, "Height map; of a coloured picture the mean of the colours counts");
    declare_normal_y(*command, normal_y_, "Where green points in the normal map that is written")
        ->group("Relief");
    declare_options(*command, settings_, kForNormal);
    return command;
}

void NormalCommand::run(Interrupts const& interrupts)
{
    Job job;
    job.task = Task::kNormal;
    job.settings = settings_;
    job.normal_y = normal_y_.value_or(settings_.normal_y);
    Written const written = make_picture_file("umbrix normal", common_, job, "_Normal", interrupts);
    say("wrote {}: normal map, {} x {}, green {}, n-scale {:.4g}, {:.1f} s", written.output.string(),
        written.report.at("width").get<int>(), written.report.at("height").get<int>(), name_of(job.normal_y),
        written.report.at("n_scale").get<double>(), written.seconds);
}

} // namespace umbrix_cli
