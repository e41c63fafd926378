// SPDX-License-Identifier: MIT
#include "stack_command.h"

#include "failure.h"
#include "map_usage.h"
#include "naming.h"
#include "option_table.h"
#include "output_format.h"
#include "preflight.h"
#include "stack_example.h"
#include "stack_file.h"
#include "temporary.h"

#include <chrono>
#include <fmt/format.h>
#include <memory>

namespace umbrix_cli {

namespace {

namespace fs = std::filesystem;

constexpr char const* kCommand = "umbrix stack";
constexpr char const* kStack = "Stack";

void note(std::string const& text)
{
    fmt::print(stderr, "{}: note: {}\n", kCommand, text);
}

void check_layer_files(StackDescription const& description)
{
    for (StackLayer const& layer : description.layers) {
        try {
            check_input(layer.file);
        } catch (Failure const& failure) {
            throw Failure(layer.file_label(), failure.what(), failure.advice);
        }
    }
}

/// One of the pictures that a run makes.
class Target {
public:
    Target(fs::path named, char const* what, std::string const& stack_file,
           StackDescription const& description, bool overwrite)
        : named_(std::move(named)), what_(what), target_(check_output(named_, stack_file, overwrite)),
          overwrite_(overwrite)
    {
        std::error_code error;
        for (StackLayer const& layer : description.layers) {
            if (fs::equivalent(target_, layer.file, error)) {
                throw Failure(named_.string(), "it is the picture of a layer, which would be lost",
                              "give another name", kWrongUsage);
            }
        }
    }

    fs::path const& named() const { return named_; }
    char const* what() const { return what_; }

    bool is_same_file(Target const& other) const
    {
        return fs::weakly_canonical(target_) == fs::weakly_canonical(other.target_);
    }

    /// Makes the temporary file that a worker writes.
    StackOutput open()
    {
        OutputFormat const& format = *output_format(named_);
        if (*format.warning != '\0') {
            note(fmt::format("{}: {}", named_.string(), format.warning));
        }
        file_ = std::make_unique<OutputFile>(target_, format.extension);
        return {file_->temporary().string(), named_.string()};
    }

    void move_into_place() { file_->move_into_place(overwrite_); }

private:
    fs::path named_;
    char const* what_;
    fs::path target_;
    bool overwrite_;
    std::unique_ptr<OutputFile> file_;
};

void check_that_names_differ(std::vector<Target> const& targets)
{
    for (std::size_t i = 0; i < targets.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (targets[i].is_same_file(targets[j])) {
                throw Failure(targets[i].named().string(),
                              fmt::format("the {} and the {} would go to the same file", targets[j].what(),
                                          targets[i].what()),
                              "give each its own name", kWrongUsage);
            }
        }
    }
}

} // namespace

CLI::App* StackCommand::declare(CLI::App& app)
{
    CLI::App* const command =
        app.add_subcommand("stack", "Blend layers into a normal map, a height map and an Umbrix map");
    common_.declare_output(*command, "INPUT_Normal beside the input, the blended normal map");
    common_
        .declare_input(*command, "Stack file: TOML with normal_scale and, for each layer from the lowest to "
                                 "the uppermost, [[layer]] with file, kind, blend, opacity, n_scale, detail, "
                                 "gaussian, depth and edges; --new writes a commented example. blend and "
                                 "opacity tell how a layer joins what lies below it")
        ->required(false);
    command->add_option("--height", height_output_, "File for the blended height map, from 0 to 255")
        ->type_name("FILE")
        ->group("Files");
    command->add_option("--map", map_output_, "File for the Umbrix map of the blended normals and heights")
        ->type_name("FILE")
        ->group("Files");
    command
        ->add_flag("--new", new_, "Write an example stack to INPUT [default stack.toml] and do nothing else")
        ->group(kStack);
    command
        ->add_flag(
            "--map-from-layers", map_from_layers_,
            "Make the map by the library's own way with layers, which leaves out the normals of layers "
            "that join by `blend`")
        ->group(kStack);
    declare_options(*command, settings_, kForMap);
    return command;
}

void StackCommand::validate() const
{
    if (common_.input.empty()) {
        throw Failure("INPUT", "no stack file is given", "name one, or write an example with --new",
                      kWrongUsage);
    }
    if (map_from_layers_ && map_output_.empty()) {
        throw Failure("--map-from-layers", "no map is to be made", "name it with --map", kWrongUsage);
    }
    if (map_from_layers_ && !settings_.light) {
        throw Failure("--map-from-layers", "without light the map has nothing of the layers' normals",
                      "leave it or --no-light out", kWrongUsage);
    }
    if (!map_output_.empty()) {
        check_map_usage(settings_, map_output_);
    }
}

void StackCommand::write_example() const
{
    if (!common_.output.empty() || !height_output_.empty() || !map_output_.empty()) {
        throw Failure("--new", "it makes no pictures", "leave -o, --height and --map out", kWrongUsage);
    }
    fs::path const file = common_.input.empty() ? "stack.toml" : common_.input;
    if (!write_example_stack(file, common_.overwrite)) {
        note(fmt::format("{}: the example textures are not near; change the names of its files",
                         file.string()));
    }
    fmt::print("wrote {}: an example stack; {} {} makes its normal map\n", file.string(), kCommand,
               file.string());
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

    std::vector<Target> targets;
    auto const add = [&](fs::path const& named, char const* what) {
        targets.emplace_back(named, what, common_.input, file.description, common_.overwrite);
        return targets.size() - 1;
    };
    fs::path const normals =
        common_.output.empty() ? default_output(common_.input, "_Normal") : fs::path(common_.output);
    Job job;
    std::vector<StackOutput StackJob::*> fields{&StackJob::normals};
    add(normals, "normal map");
    if (!height_output_.empty()) {
        add(height_output_, "height map");
        fields.push_back(&StackJob::heights);
    }
    if (!map_output_.empty()) {
        add(map_output_, "Umbrix map");
        fields.push_back(&StackJob::map);
    }
    check_that_names_differ(targets);
    for (std::string const& each : file.notes) {
        note(each);
    }

    for (std::size_t i = 0; i < targets.size(); ++i) {
        job.stack.*fields[i] = targets[i].open();
    }
    ScratchFolder const scratch;
    job.task = Task::kStack;
    job.input = common_.input;
    job.scratch = scratch.path().string();
    job.max_texels = common_.max_texels;
    job.settings = settings_;
    job.stack.description = file.description;
    job.stack.map_from_layers = map_from_layers_;
    nlohmann::json const report = supervise(job, common_.supervision(kCommand, normals.string(), interrupts));
    interrupts.check();
    for (Target& target : targets) {
        target.move_into_place();
    }
    std::chrono::duration<double> const taken = std::chrono::steady_clock::now() - start;
    for (Target const& target : targets) {
        fmt::print("wrote {}: {}, {} x {}, of {} layers, {:.1f} s\n", target.named().string(), target.what(),
                   report.at("width").get<int>(), report.at("height").get<int>(),
                   report.at("layers").get<int>(), taken.count());
    }
}

} // namespace umbrix_cli
