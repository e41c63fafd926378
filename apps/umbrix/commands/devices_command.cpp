// SPDX-License-Identifier: MIT
#include "commands/devices_command.h"

#include "terminal/report_json.h"
#include "terminal/supervise.h"

#include <fmt/format.h>

namespace umbrix_cli {

namespace {

void print_text(DevicesReport const& report)
{
    if (report.devices.empty()) {
        fmt::print("the graphics library of this build has no device\n");
    }
    for (DevicesReport::Device const& device : report.devices) {
        fmt::print("{:3}  {} ({}){}\n", device.number, device.name, device.backend,
                   device.is_default ? ", taken by --gpu without a number" : "");
    }
    if (!report.last_error.empty()) {
        fmt::print("last reason for not using one: {}\n", report.last_error);
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
    constexpr double kNoDecoding = 60;
    DevicesReport const report = supervise(
        DevicesJob{}, {"umbrix devices", kNoDecoding, verbose_, ProgressDisplay::Style::kNone, interrupts});
    if (json_) {
        fmt::print("{}", json_text(report));
    } else {
        print_text(report);
    }
}

} // namespace umbrix_cli
