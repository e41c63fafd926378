// SPDX-License-Identifier: MIT
#include "commands/info_command.h"

#include "terminal/kind_name.h"
#include "terminal/report_json.h"
#include "terminal/say.h"
#include "toolkit/files/preflight.h"

#include <cmath>
#include <fmt/format.h>

namespace umbrix_cli {

namespace {

/// Float files have infinity and what is no number, too.
std::string shown(double number)
{
    return std::isfinite(number) ? fmt::format("{:.6g}", number) : "none";
}

void print_text(std::string const& file, InfoReport const& report)
{
    say("{}: {} x {}, {}, {}", file, report.width, report.height, report.format, report.pixel);
    for (ChannelRange const& channel : report.channels) {
        fmt::print("  {:5} {} to {}, mean {}\n", channel.name, shown(channel.minimum), shown(channel.maximum),
                   shown(channel.mean));
    }
    for (std::string const& note : report.notes) {
        say("  {}", note);
    }
    for (Attribute const& each : report.attributes) {
        say("  {}: {}", each.key, each.value);
    }
    fmt::print("  `umbrix map` takes it for a {}: {}\n", name_of(report.taken_for), report.because);
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
    InfoReport const report =
        supervise(InfoJob{common_.input, common_.max_texels}, common_.supervision("umbrix info", interrupts));
    if (json_) {
        fmt::print("{}", json_text(report, common_.input));
    } else {
        print_text(common_.input, report);
    }
}

} // namespace umbrix_cli
