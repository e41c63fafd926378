// SPDX-License-Identifier: MIT
#include "commands/relief/horizon_command.h"

#include "options/saving_options.h"
#include "options/setting_options.h"
#include "terminal/height_words.h"
#include "terminal/say.h"
#include "toolkit/pictures/naming.h"

namespace umbrix_cli {

void HorizonCommand::declare(CLI::App& command)
{
    common_.declare_output(command, "INPUT_Horizon1 beside the input, the directions from 0 to 135 degrees");
    common_.declare_input(command, "Height map; of a coloured picture the mean of the colours counts");
    command
        .add_option(
            "--later", later_output_,
            "File for the directions from 180 to 315 degrees [default INPUT_Horizon2 beside the input]")
        ->type_name("FILE")
        ->group(kFilesGroup);
    declare_options(command, settings_, kForHorizon | kForHeights);
}

void HorizonCommand::run(Interrupts const& interrupts)
{
    common_.saving = with_depth(common_.saving, settings_.save_depth);
    HorizonJob job;
    job.settings = settings_;
    std::string const later =
        later_output_.empty() ? default_output(common_.input, "_Horizon2").string() : later_output_;
    Made<HorizonJob> const made = make_picture_file("umbrix horizon", common_, job, "_Horizon1", interrupts,
                                                    SecondOutput<HorizonJob>{later, &HorizonJob::later});
    HorizonReport const& report = made.report;
    say("wrote {}: horizons, {} x {}, relief {:.4g}{}, {:.1f} s", made.output.string(), report.width,
        report.height, static_cast<double>(report.h_scale), told(report.heights), made.seconds);
    say("wrote {}: horizons of the later four directions", later);
}

} // namespace umbrix_cli
