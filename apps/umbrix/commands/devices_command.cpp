// SPDX-License-Identifier: MIT
#include "commands/devices_command.h"

#include "terminal/supervise.h"

#include <fmt/format.h>

namespace umbrix_cli {

namespace {

void print_text(nlohmann::json const& report)
{
    if (report.at("devices").empty()) {
        fmt::print("the graphics library of this build has no device\n");
    }
    for (nlohmann::json const& device : report.at("devices")) {
        fmt::print("{:3}  {} ({}){}\n", device.at("number").get<int>(), device.at("name").get<std::string>(),
                   device.at("backend").get<std::string>(),
                   device.at("default").get<bool>() ? ", taken by --gpu without a number" : "");
    }
    if (auto const error = report.at("last_error").get<std::string>(); !error.empty()) {
        fmt::print("last reason for not using one: {}\n", error);
    }
}

} // namespace

CLI::App* DevicesCommand::declare(CLI::App& app)
{
    CLI::App* const command =
        app.add_subcommand("devices", "List the graphics processors that --gpu can take");
    command->add_flag("--json", json_, "Write one JSON object instead of text");
    command->add_flag("-v,--verbose", verbose_, "Show what the drivers say");
    return command;
}

void DevicesCommand::run(Interrupts const& interrupts)
{
    Job job;
    job.task = Task::kDevices;
    constexpr double kNoDecoding = 60;
    nlohmann::json const report = supervise(job, {"umbrix devices",
                                                  {"graphics library", "", kNoDecoding},
                                                  verbose_,
                                                  ProgressDisplay::Style::kNone,
                                                  interrupts});
    if (json_) {
        fmt::print("{}\n", report.dump(2, ' ', false, nlohmann::json::error_handler_t::replace));
    } else {
        print_text(report);
    }
}

} // namespace umbrix_cli
