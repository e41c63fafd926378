// SPDX-License-Identifier: MIT
#include "commands/map_command.h"

#include "options/kind_option.h"
#include "options/map_usage.h"
#include "options/normal_y_option.h"
#include "options/setting_options.h"
#include "terminal/complaint.h"
#include "toolkit/base/utf8.h"
#include "toolkit/pictures/picture_difference.h"

#include <fmt/format.h>

namespace umbrix_cli {

namespace {

constexpr char const* kCommand = "umbrix map";

char const* name_of(Kind kind)
{
    return kind == Kind::kHeightMap ? "height map" : "normal map";
}

} // namespace

CLI::App* MapCommand::declare(CLI::App& app)
{
    CLI::App* const command =
        app.add_subcommand("map", "Make an Umbrix map: light from three directions, with occlusion");
    common_.declare_output(*command, "INPUT_Umbrix beside the input");
    common_.declare_input(*command, "Height map, or normal map with the heights in its alpha");
    declare_kind(*command, kind_);
    declare_normal_y(*command, normal_y_, "Where green points in a normal map that is read")->group("Input");
    CLI::Option* const gpu = declare_graphics(*command, graphics_);
    command
        ->add_flag("--compare-cpu", compare_cpu_,
                   "With --gpu, make the map on the processor, too, and tell the largest difference of each "
                   "channel")
        ->group(gpu->get_group())
        ->needs(gpu);
    declare_options(*command, settings_, kForMap);
    return command;
}

void MapCommand::validate() const
{
    check_map_usage(settings_, common_.output);
    check_graphics_usage(graphics_, settings_);
    if (normal_y_ && kind_ == Kind::kHeightMap) {
        throw UsageError("--normal-y", "a height map has no green to point anywhere", "leave it out");
    }
}

void MapCommand::print_relief(nlohmann::json const& report) const
{
    if (graphics_.device && !graphics_.match_cpu) {
        fmt::print(", heights inverted and at full scale");
    } else {
        fmt::print(", relief {}", h_scale_of(settings_));
    }
    if (graphics_.device) {
        nlohmann::json const& device = report.at("device");
        fmt::print(", on {} ({})", device.at("name").get<std::string>(),
                   device.at("backend").get<std::string>());
    }
}

void MapCommand::run(Interrupts const& interrupts)
{
    validate();
    Job job;
    job.task = Task::kMap;
    job.settings = settings_;
    job.graphics = graphics_;
    job.compare_cpu = compare_cpu_;
    job.normal_y = normal_y_.value_or(settings_.normal_y);
    job.kind = kind_ ? kind_ : settings_.kind;
    Written const written = make_picture_file(kCommand, common_, job, "_Umbrix", interrupts);
    Kind const kind = written.report.at("kind").get<Kind>();
    bool const guessed = written.report.at("guessed").get<bool>();
    fmt::print("wrote {}: Umbrix map, {} x {}, from a {}", printable(written.output.string()),
               written.report.at("width").get<int>(), written.report.at("height").get<int>(), name_of(kind));
    if (guessed) {
        fmt::print(" (guessed: {})", written.report.at("reason").get<std::string>());
    }
    if (kind == Kind::kNormalMap) {
        fmt::print(", green {}", name_of(job.normal_y));
    }
    print_relief(written.report);
    fmt::print(", {:.1f} s\n", written.seconds);
    if (compare_cpu_) {
        fmt::print("largest difference from the map made without --gpu, of 255: {}\n",
                   in_words(written.report.at("difference")));
    }
}

} // namespace umbrix_cli
