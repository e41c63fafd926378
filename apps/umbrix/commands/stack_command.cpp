// SPDX-License-Identifier: MIT
#include "commands/stack_command.h"

#include "options/map_usage.h"
#include "options/saving_options.h"
#include "options/setting_options.h"
#include "terminal/complaint.h"
#include "terminal/say.h"
#include "toolkit/batch/stack_target.h"
#include "toolkit/files/preflight.h"
#include "toolkit/files/stale_temporaries.h"
#include "toolkit/pictures/naming.h"
#include "toolkit/pictures/output_check.h"
#include "toolkit/settings/stack_example.h"
#include "toolkit/settings/stack_file.h"

#include <chrono>
#include <fmt/format.h>

namespace umbrix_cli {

namespace {

namespace fs = std::filesystem;

constexpr char const* kStackCommand = "umbrix stack";
constexpr char const* kStack = "Stack";

void check_that_no_layer_is_lost(fs::path const& output, StackDescription const& description)
{
    for (StackLayer const& layer : description.layers) {
        check_that_is_kept(output, layer.file, "the picture of a layer");
    }
}

void check_that_names_differ(std::vector<StackTarget> const& targets)
{
    for (std::size_t i = 0; i < targets.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (targets[i].is_same_file(targets[j])) {
                throw UsageError(targets[i].named().string(),
                                 fmt::format("the {} and the {} would go to the same file", targets[j].what(),
                                             targets[i].what()),
                                 "give each its own name");
            }
        }
    }
}

} // namespace

void StackCommand::declare(CLI::App& command)
{
    common_.declare_output(command, "INPUT_Normal beside the input, the blended normal map");
    common_
        .declare_input(
            command, "Stack file: TOML with normal_scale, save_depth and, for each layer from the lowest to "
                     "the uppermost, [[layer]] with file, kind, blend, opacity, n_scale, detail, "
                     "gaussian, depth and edges; --new writes a commented example. blend and "
                     "opacity tell how a layer joins what lies below it")
        ->required(false);
    command.add_option("--height", height_output_, "File for the blended height map, from 0 to 255")
        ->type_name("FILE")
        ->group(kFilesGroup);
    command.add_option("--map", map_output_, "File for the Umbrix map of the blended normals and heights")
        ->type_name("FILE")
        ->group(kFilesGroup);
    command
        .add_flag("--new", new_, "Write an example stack to INPUT [default stack.toml] and do nothing else")
        ->group(kStack);
    command
        .add_flag("--map-from-layers", map_from_layers_,
                  "Make the map by the library's own way with layers, which leaves out the normals of layers "
                  "that join by `blend`")
        ->group(kStack);
    declare_graphics(command, graphics_);
    declare_options(command, settings_, kForMap | kForHeights);
}

void StackCommand::validate() const
{
    if (common_.input.empty()) {
        throw UsageError("INPUT", "no stack file is given", "name one, or write an example with --new");
    }
    if (map_from_layers_ && map_output_.empty()) {
        throw UsageError("--map-from-layers", "no map is to be made", "name it with --map");
    }
    if (map_from_layers_ && !settings_.light) {
        throw UsageError("--map-from-layers", "without light the map has nothing of the layers' normals",
                         "leave it or --no-light out");
    }
    if (graphics_.device && map_output_.empty()) {
        throw UsageError("--gpu", "it is for the map, and none is to be made", "name it with --map");
    }
    if (!map_output_.empty()) {
        check_map_usage(settings_, map_output_);
        check_graphics_usage(graphics_, settings_);
    }
}

void StackCommand::write_example() const
{
    if (!common_.output.empty() || !height_output_.empty() || !map_output_.empty()) {
        throw UsageError("--new", "it makes no pictures", "leave -o, --height and --map out");
    }
    fs::path const file = common_.input.empty() ? "stack.toml" : common_.input;
    std::error_code error;
    fs::path const program = fs::read_symlink("/proc/self/exe", error);
    if (!write_example_stack(file, program.parent_path(), common_.overwrite)) {
        say_note(kStackCommand,
                 fmt::format("{}: the example textures are not near; change the names of its files",
                             file.string()));
    }
    say("wrote {}: an example stack; {} {} makes its normal map", file.string(), kStackCommand,
        file.string());
}

std::vector<StackTarget> StackCommand::targets_for(StackDescription const& description) const
{
    struct Named {
        fs::path file;
        char const* what;
        Output StackJob::*field;
    };
    fs::path const normals =
        common_.output.empty() ? default_output(common_.input, "_Normal") : fs::path(common_.output);
    std::vector<StackTarget> targets;
    for (Named const& each : {Named{normals, "normal map", &StackJob::normals},
                              Named{height_output_, "height map", &StackJob::heights},
                              Named{map_output_, "Umbrix map", &StackJob::map}}) {
        if (!each.file.empty()) {
            check_that_no_layer_is_lost(each.file, description);
            fs::path const target = check_output(each.file, common_.input, common_.overwrite);
            targets.emplace_back(each.file, target, each.what, each.field);
        }
    }
    check_that_names_differ(targets);
    return targets;
}

void StackCommand::run(Interrupts const& interrupts)
{
    if (new_) {
        write_example();
        return;
    }
    validate();
    auto const start = std::chrono::steady_clock::now();
    check_input(common_.input);
    StackFile const file = read_stack_file(common_.input);
    check_layer_files(file.description);

    std::vector<StackTarget> targets = targets_for(file.description);
    for (std::string const& each : file.notes) {
        say_note(kStackCommand, each);
    }

    StackJob job;
    for (StackTarget& target : targets) {
        note_format(kStackCommand, target.named());
        remove_leftovers_beside(target.named());
        target.open(job);
    }
    for (Output* const output : {&job.normals, &job.heights, &job.map}) {
        output->saving =
            with_depth(with_depth(common_.saving, file.description.save_depth), settings_.save_depth);
    }
    job.file = common_.input;
    job.max_texels = common_.max_texels;
    job.settings = settings_;
    job.graphics = graphics_;
    job.description = file.description;
    job.map_from_layers = map_from_layers_;
    StackReport const report = supervise(job, common_.supervision(kStackCommand, interrupts));
    interrupts.check();
    // All pictures are whole and read back. A rename that fails now keeps the later ones from being replaced.
    for (StackTarget& target : targets) {
        target.move_into_place(common_.overwrite);
    }
    std::chrono::duration<double> const taken = std::chrono::steady_clock::now() - start;
    for (StackTarget const& target : targets) {
        say("wrote {}: {}, {} x {}, of {} layers, {:.1f} s", target.named().string(), target.what(),
            report.width, report.height, report.layers, taken.count());
    }
}

} // namespace umbrix_cli
