// SPDX-License-Identifier: MIT
#include "commands/light/relight_command.h"

#include "commands/light/albedo_option.h"
#include "options/saving_options.h"
#include "options/setting_options.h"
#include "terminal/complaint.h"
#include "terminal/say.h"
#include "toolkit/pictures/naming.h"
#include "toolkit/pictures/output_format.h"

#include <CLI/Error.hpp>
#include <algorithm>
#include <fmt/format.h>
#include <iterator>
#include <utility>

namespace umbrix_cli {

namespace {

constexpr char const* kLight = "Light";
constexpr char const* kTurntable = "_Turntable";

constexpr std::pair<char const*, WeightRule> kRules[] = {
    {"fitted", WeightRule::kFitted}, {"exact", WeightRule::kExact}, {"clamped", WeightRule::kClamped}};

WeightRule parse_rule(std::string const& text)
{
    auto const* const rule =
        std::ranges::find_if(kRules, [&](auto const& each) { return text == each.first; });
    if (rule == std::end(kRules)) {
        throw CLI::ValidationError("--weights",
                                   fmt::format("'{}' is none of fitted, exact and clamped", text));
    }
    return rule->second;
}

template <typename Number>
void add_number(CLI::App& command, char const* option, char const* value_name, Number& value, double minimum,
                double maximum, char const* description)
{
    std::function<void(std::string const&)> const parse = [=, &value](std::string const& text) {
        double const number = parse_number(option, text, minimum, maximum);
        value = static_cast<Number>(number);
        if (static_cast<double>(value) != number) {
            throw CLI::ValidationError(option, fmt::format("{} is not a whole number", text));
        }
    };
    command.add_option_function<std::string>(option, parse, description)
        ->type_name(value_name)
        ->group(kLight);
}

} // namespace

void RelightCommand::declare(CLI::App& command)
{
    common_.declare_output(command, "INPUT_Relit or INPUT_Turntable beside the input");
    common_.declare_input(command, "Umbrix map");
    std::function<void(std::string const&)> const parse = [this](std::string const& text) {
        std::size_t const comma = text.find(',');
        if (comma == std::string::npos) {
            throw CLI::ValidationError("--light",
                                       fmt::format("'{}' is not two numbers with a comma between", text));
        }
        azimuth_degrees_ = parse_number("--light", text.substr(0, comma), -360, 360);
        elevation_degrees_ = parse_number("--light", text.substr(comma + 1), 0, 90);
    };
    command
        .add_option_function<std::string>(
            "--light", parse,
            "Where the light stands. Azimuth: 0 right, 90 top, 180 left, 270 bottom of the picture; "
            "elevation: 0 level "
            "with it, 90 straight above [degrees, -360 to 360 and 0 to 90; default 135,45]")
        ->type_name("AZIMUTH,ELEVATION")
        ->group(kLight);
    add_number(command, "--turntable", "N", directions_, 1, 360,
               "Write a contact sheet of N azimuths instead, once round from that of --light, row by row [1 "
               "to 360]");
    add_number(
        command, "--cell", "N", cell_, 16, 1024,
        "Longest side of a picture of the contact sheet or the animation [16 to 1024 texels; default 256]");
    add_number(command, "--animate", "SECONDS", seconds_, 0.1, 600,
               "With --turntable, write an animated PNG that goes round in this time instead [0.1 to 600]");
    add_number(command, "--exposure", "X", exposure_, 0.01, 10,
               "Brightness of flat ground that nothing hides; slopes that face the light are brighter "
               "[0.01 to 10; default 0.7]");
    add_number(command, "--ambient", "X", ambient_, 0, 10,
               "What light from all around adds to that brightness [0 to 10; default 0]");
    declare_albedo(command, albedo_, "The result is coloured, and coded in the same way");
    std::function<void(std::string const&)> const parse_weights = [this](std::string const& text) {
        weights_ = parse_rule(text);
    };
    command
        .add_option_function<std::string>(
            "--weights", parse_weights,
            "How the channels count: nearest to shadows that were traced, so that open slopes have the light "
            "of Lambert's law, or those that face away from the light not at all [fitted, exact, clamped; "
            "default fitted]")
        ->type_name("RULE")
        ->group(kLight);
    command.add_flag("--force", force_, "Take a picture that tells that it is no Umbrix map, too")
        ->group(kLight);
    declare_options(command, settings_, kForRelight);
    command_ = &command;
}

/// Only PNG holds an animation.
void RelightCommand::settle_animation()
{
    if (seconds_ == 0.0) {
        return;
    }
    if (directions_ == 0) {
        throw UsageError("--animate", "there is nothing that goes round",
                         "say in how many steps with --turntable");
    }
    std::filesystem::path named = common_.output;
    if (named.empty()) {
        named = default_output(common_.input, kTurntable).replace_extension(".png");
    } else if (output_format(named) != output_format("a.png")) {
        throw UsageError("--animate", fmt::format("{} is no PNG", named.string()),
                         "give a name ending in .png");
    }
    common_.output = named.string();
}

void RelightCommand::run(Interrupts const& interrupts)
{
    settle_animation();
    common_.saving = with_depth(common_.saving, settings_.save_depth);
    RelightJob job;
    job.light = {azimuth_degrees_, elevation_degrees_};
    job.look = {settings_.mode, exposure_, weights_, ambient_};
    job.albedo = albedo_;
    job.mode_is_given = command_->count("--mode") > 0 || command_->count("--preset") > 0;
    job.force = force_;
    job.directions = directions_;
    job.cell = cell_;
    job.seconds = seconds_;
    char const* const suffix = directions_ == 0 ? "_Relit" : kTurntable;
    check_albedo(common_, suffix, albedo_);
    Made<RelightJob> const made = make_picture_file("umbrix relight", common_, job, suffix, interrupts);
    std::string const light = directions_ == 0
                                  ? fmt::format("azimuth {}", azimuth_degrees_)
                                  : fmt::format("{} azimuths from {}", directions_, azimuth_degrees_);
    say("wrote {}: {} x {}, light from {}, elevation {}", made.output.string(), made.report.width,
        made.report.height, light, elevation_degrees_);
}

} // namespace umbrix_cli
