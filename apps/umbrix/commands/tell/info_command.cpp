// SPDX-License-Identifier: MIT
#include "commands/tell/info_command.h"

#include "terminal/kind_name.h"
#include "terminal/report_json.h"
#include "terminal/say.h"
#include "toolkit/files/preflight.h"

#include <cmath>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace umbrix_cli {

namespace {

/// Float files have infinity and what is no number, too.
std::string shown(double number)
{
    return std::isfinite(number) ? fmt::format("{:.6g}", number) : "none";
}

void print_channel(ChannelRange const& channel)
{
    bool const many = channel.levels >= kMostLevels;
    say("  {:5} {} to {}, mean {}, {}{} level{}{}", channel.name, shown(channel.minimum),
        shown(channel.maximum), shown(channel.mean), channel.levels, many ? " or more" : "",
        channel.levels == 1 ? "" : "s",
        channel.invalid > 0 ? fmt::format(", {} NaN or infinite", channel.invalid) : "");
}

void print_text(std::string const& file, InfoReport const& report)
{
    if (report.only_header) {
        say("{}: {} x {}, {}; --range looks into so large a picture", file, report.width, report.height,
            report.format);
        return;
    }
    say("{}: {} x {}, {}, {}", file, report.width, report.height, report.format, report.pixel);
    for (ChannelRange const& channel : report.channels) {
        print_channel(channel);
    }
    if (report.has_8_bit_steps) {
        say("  8-bit steps in a {} file", report.bits_per_channel == 16 ? "16-bit" : "float");
    }
    for (std::string const& note : report.notes) {
        say("  {}", note);
    }
    for (Attribute const& each : report.attributes) {
        say("  {}: {}", each.key, each.value);
    }
    say("  `umbrix map` takes it for a {}: {}", name_of(report.taken_for), report.because);
}

} // namespace

void InfoCommand::declare(CLI::App& command)
{
    common_.declare_input(command, "Picture");
    command.add_flag("--json", json_, "Write one JSON object instead of text");
    command.add_flag("--range", range_,
                     "Look into pictures of more than 16 million texels, too, which takes time and memory");
}

void InfoCommand::run(Interrupts const& interrupts)
{
    check_input(common_.input);
    InfoReport const report = supervise(InfoJob{common_.input, common_.max_texels, range_},
                                        common_.supervision("umbrix info", interrupts));
    if (json_) {
        say_json(json_of(report, common_.input), 2);
    } else {
        print_text(common_.input, report);
    }
}

} // namespace umbrix_cli
