// SPDX-License-Identifier: MIT
#include "commands/light/view_command.h"

#include "commands/light/albedo_option.h"
#include "options/setting_options.h"
#include "terminal/say.h"
#include "toolkit/pictures/naming.h"

#include <filesystem>

namespace umbrix_cli {

namespace {

constexpr char const* kSuffix = "_View";

} // namespace

void ViewCommand::declare(CLI::App& command)
{
    command_ = &command;
    common_.holds = FileHolds::kPage;
    common_.declare_output_file(command, "INPUT_View.html beside the input");
    common_.declare_input(command, "Umbrix map");
    declare_albedo(command, albedo_, "The light on the page is coloured by them");
    command.add_option("--title", title_, "What the page is called [default the name of the input]")
        ->type_name("TEXT");
    command.add_flag("--force", force_, "Take a picture that tells that it is no Umbrix map, too");
    declare_options(command, settings_, kForRelight);
}

void ViewCommand::run(Interrupts const& interrupts)
{
    if (common_.output.empty()) {
        common_.output = default_output(common_.input, kSuffix).replace_extension(".html").string();
    }
    ViewJob job;
    job.title = title_.empty() ? std::filesystem::path(common_.input).stem().string() : title_;
    job.mode = settings_.mode;
    job.mode_is_given = command_->count("--mode") > 0 || command_->count("--preset") > 0;
    job.force = force_;
    job.albedo = albedo_;
    check_albedo(common_, kSuffix, albedo_);
    Made<ViewJob> const made = make_picture_file("umbrix view", common_, job, kSuffix, interrupts);
    say("wrote {}: a page with {} x {} texels, {:.0f} KB", made.output.string(), made.report.width,
        made.report.height, made.report.bytes / 1000.0);
}

} // namespace umbrix_cli
