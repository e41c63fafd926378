// SPDX-License-Identifier: MIT
#include "commands/map_command.h"

#include "options/kind_option.h"
#include "options/map_usage.h"
#include "options/normal_y_option.h"
#include "options/saving_options.h"
#include "options/setting_options.h"
#include "terminal/complaint.h"
#include "terminal/height_words.h"
#include "terminal/kind_name.h"
#include "terminal/say.h"
#include "toolkit/pictures/analysis/picture_difference.h"

#include <fmt/format.h>

namespace umbrix_cli {

namespace {

constexpr char const* kMapCommand = "umbrix map";

} // namespace

void MapCommand::declare(CLI::App& command)
{
    common_.declare_output(command, "INPUT_Umbrix beside the input");
    common_.declare_input(command, "Height map, or normal map with the heights in its alpha");
    declare_kind(command, kind_);
    declare_normal_y(command, normal_y_, "Where green points in a normal map that is read")->group("Input");
    CLI::Option* const gpu = declare_graphics(command, graphics_);
    command
        .add_flag("--compare-cpu", compare_cpu_,
                  "With --gpu, make the map on the processor, too, and tell the largest difference of each "
                  "channel")
        ->group(gpu->get_group())
        ->needs(gpu);
    declare_options(command, settings_, kForMap | kForHeights);
    declare_profile(command, profile_);
}

void MapCommand::validate() const
{
    check_map_usage(settings_, common_.output);
    check_graphics_usage(graphics_, settings_);
    check_normal_y_usage(normal_y_, kind_);
}

std::string MapCommand::relief_in_words() const
{
    if (graphics_.device && !graphics_.match_cpu) {
        return ", heights inverted and at full scale";
    }
    return fmt::format(", {} {}{}", settings_.h_scale ? "h-scale" : "relief", h_scale_of(settings_),
                       settings_.n_scale ? fmt::format(", n-scale {}", *settings_.n_scale) : "");
}

void MapCommand::run(Interrupts const& interrupts)
{
    follow_profile(profile_, ProfileMap::kMap, common_, settings_);
    validate();
    common_.saving = with_depth(common_.saving, settings_.save_depth);
    MapJob job;
    job.settings = settings_;
    job.graphics = graphics_;
    job.compare_cpu = compare_cpu_;
    job.normal_y = normal_y_;
    job.kind = kind_ ? kind_ : settings_.kind;
    Made<MapJob> const made = make_picture_file(kMapCommand, common_, job, "_Umbrix", interrupts);
    MapReport const& report = made.report;
    std::string line = fmt::format("wrote {}: Umbrix map, {} x {}, from a {}", made.output.string(),
                                   report.width, report.height, name_of(report.kind));
    if (report.guessed) {
        line += fmt::format(" (guessed: {})", report.reason);
    }
    if (report.kind == Kind::kNormalMap) {
        line += fmt::format(", green {}{}", name_of(report.green),
                            report.green_by_name ? " (its name says so)" : "");
    }
    line += told(report.heights) + relief_in_words();
    if (report.device) {
        line += fmt::format(", on {} ({})", report.device->name, report.device->backend);
    }
    say("{}, {:.1f} s", line, made.seconds);
    if (compare_cpu_) {
        say("largest difference from the map made without --gpu, of 255: {}", in_words(report.difference));
    }
}

} // namespace umbrix_cli
