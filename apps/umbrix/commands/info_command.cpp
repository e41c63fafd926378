// SPDX-License-Identifier: MIT
#include "commands/info_command.h"

#include "terminal/say.h"
#include "toolkit/files/preflight.h"

#include <fmt/format.h>

namespace umbrix_cli {

namespace {

/// JSON has no word for infinity and what is no number, and float files have both.
std::string shown(nlohmann::json const& number)
{
    return number.is_null() ? "none" : fmt::format("{:.6g}", number.get<double>());
}

void print_text(std::string const& file, nlohmann::json const& report)
{
    say("{}: {} x {}, {}", file, report.at("width").get<int>(), report.at("height").get<int>(),
        report.at("pixel").get<std::string>());
    for (nlohmann::json const& channel : report.at("channels")) {
        fmt::print("  {:5} {} to {}, mean {}\n", channel.at("name").get<std::string>(),
                   shown(channel.at("minimum")), shown(channel.at("maximum")), shown(channel.at("mean")));
    }
    fmt::print("  `umbrix map` takes it for a {}: {}\n", report.at("taken_for").get<std::string>(),
               report.at("because").get<std::string>());
}

} // namespace

CLI::App* InfoCommand::declare(CLI::App& app)
{
    CLI::App* const command =
        app.add_subcommand("info", "Tell what is in a picture, and what map would take it for");
    common_.declare_input(*command, "Picture");
    command->add_flag("--json", json_, "Write one JSON object instead of text");
    return command;
}

void InfoCommand::run(Interrupts const& interrupts)
{
    check_input(common_.input);
    Job job;
    job.task = Task::kInfo;
    job.input = common_.input;
    job.max_texels = common_.max_texels;
    nlohmann::json report = supervise(job, common_.supervision("umbrix info", "", interrupts));
    if (json_) {
        report["file"] = common_.input;
        fmt::print("{}\n", report.dump(2, ' ', false, nlohmann::json::error_handler_t::replace));
    } else {
        print_text(common_.input, report);
    }
}

} // namespace umbrix_cli
