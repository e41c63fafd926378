// SPDX-License-Identifier: MIT
#include "commands/convert_command.h"

#include "options/setting_options.h"
#include "terminal/height_words.h"
#include "terminal/say.h"

namespace umbrix_cli {

void ConvertCommand::declare(CLI::App& command)
{
    command_ = &command;
    common_.declare_output(*command_, "");
    common_.declare_input(*command_, "Any picture that can be read");
    command_->get_option("--depth")->description(
        "Samples of what is written: 8 or 16 bits, half or float "
        "[8, 16, half, float; default as in the input, or else the nearest that the format has]");
    declare_rows(*command_, settings_, kForHeights);
    command_->get_option("--height-from")
        ->description(
            "Only this channel, as a grey picture: the mean of its colours, one of them, alpha or luma "
            "(Rec. 709) [mean, r, g, b, a, luma; default all channels, as they are]");
}

void ConvertCommand::run(Interrupts const& interrupts)
{
    ConvertJob job;
    job.reading = height_reading_of(settings_);
    if (command_->count("--height-from") > 0) {
        job.channel = settings_.height_from;
    }
    Made<ConvertJob> const made = make_picture_file("umbrix convert", common_, job, "", interrupts);
    say("wrote {}: {} x {}, {}, from {}{}, {:.1f} s", made.output.string(), made.report.width,
        made.report.height, made.report.to, made.report.from, told(made.report.heights), made.seconds);
}

} // namespace umbrix_cli
