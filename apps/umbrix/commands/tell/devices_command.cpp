// SPDX-License-Identifier: MIT
#include "commands/tell/devices_command.h"

#include "options/common_options.h"
#include "terminal/report_json.h"
#include "terminal/say.h"
#include "terminal/supervise.h"

#include <nlohmann/json.hpp>

namespace umbrix_cli {

namespace {

void print_text(DevicesReport const& report)
{
    if (report.devices.empty()) {
        say("the graphics library of this build has no device");
    }
    for (DevicesReport::Device const& device : report.devices) {
        say("{:3}  {} ({}){}", device.number, device.name, device.backend,
            device.is_default ? ", taken by --gpu without a number" : "");
    }
    if (!report.last_error.empty()) {
        say("last reason for not using one: {}", report.last_error);
    }
}

} // namespace

void DevicesCommand::declare(CLI::App& command)
{
    command.add_flag("--json", json_, "Write one JSON object instead of text");
    command.add_flag("-v,--verbose", verbose_, "Show what the drivers say");
    declare_no_sandbox(command);
}

void DevicesCommand::run(Interrupts const& interrupts)
{
    constexpr double kNoDecoding = 60;
    DevicesReport const report = supervise(
        DevicesJob{}, {"umbrix devices", kNoDecoding, verbose_, ProgressDisplay::Style::kNone, interrupts});
    if (json_) {
        say_json(json_of(report), 2);
    } else {
        print_text(report);
    }
}

} // namespace umbrix_cli
