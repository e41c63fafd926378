// SPDX-License-Identifier: MIT
#include "commands/list/list_job_options.h"

#include "options/common_options.h"
#include "options/kind_option.h"
#include "options/setting_options.h"
#include "terminal/complaint.h"
#include "terminal/kind_name.h"
#include "terminal/say.h"
#include "terminal/supervise.h"
#include "toolkit/files/preflight.h"
#include "toolkit/lists/list_settings.h"
#include "toolkit/settings/stack_file.h"
#include "toolkit/settings/stack_record.h"

#include <fmt/format.h>

namespace umbrix_cli {

namespace {

namespace fs = std::filesystem;

/// What `umbrix info` says about a picture, which is thereby known to be readable.
InfoReport info_of(fs::path const& picture, Caller const& caller)
{
    CommonOptions const limits;
    return supervise(
        InfoJob{picture.string(), limits.max_texels, true},
        {caller.command, limits.timeout_seconds, false, ProgressDisplay::Style::kNone, caller.interrupts});
}

void demand_all_of_a_folder(fs::path const& folder, Settings const& settings, std::optional<Kind> kind)
{
    if (!kind) {
        throw UsageError(folder.string(), "what its pictures are cannot be guessed",
                         "add --height-map or --normal-map");
    }
    if (!settings.n_scale && makes_normals(settings, *kind)) {
        throw UsageError(
            folder.string(), "a fitting strength of the normals cannot be worked out for a folder",
            fmt::format("add --n-scale: for pictures 1024 texels wide {}", n_scale_of(settings, 1024)));
    }
}

/// An option of other commands that no field of a job holds.
struct Foreign {
    char const* name;
    bool is_flag;
    bool saves; ///< It is about the result, and not about the heights.
};

constexpr Foreign kForeign[] = {
    {"--depth", false, true},
    {"--round", false, true},
    {"--dither", true, true},
    {"--compression", false, true},
    {"--invert", true, false},
    {"--height-range", false, false},
    {"--replace-invalid", false, false},
    {"--height-from", false, false},
};

/// Has @p command refuse the option in a sentence, where the parser would only not know it.
void refuse(CLI::App& command, Foreign const& foreign)
{
    if (CLI::Option* const declared = command.get_option_no_throw(foreign.name)) {
        command.remove_option(declared);
    }
    std::function<void()> const complain = [foreign] {
        throw UsageError(foreign.name,
                         fmt::format("a job of a list does not hold how its {}",
                                     foreign.saves ? "map is saved" : "heights are read"),
                         "give it to umbrix list run");
    };
    CLI::Option* const option = foreign.is_flag
                                    ? command.add_flag_callback(foreign.name, complain)
                                    : command.add_option_function<std::string>(
                                          foreign.name, [complain](std::string const&) { complain(); });
    option->group(""); // not in the help
}

} // namespace

void JobOptions::declare(CLI::App& command)
{
    constexpr char const* kSource = "Source";
    command_ = &command;
    command.add_option("--search", search, "In a folder: the files to work on [default *.*, all]")
        ->type_name("PATTERN")
        ->group(kSource);
    declare_kind(command, kind_);
    command
        .add_option(
            "--layers", layers,
            "Stack file, as for umbrix stack; its blended heights, and normals where they are made from "
            "heights, take the place of the source's")
        ->type_name("STACK")
        ->group(kSource);
    declare_options(command, settings, kForMap);
    for (Foreign const& each : kForeign) {
        refuse(command, each);
    }
}

void JobOptions::say_what_is_left_out(std::string const& caller) const
{
    if (settings.save_depth) {
        say_note(caller,
                 fmt::format("a job does not hold the save_depth of the preset; umbrix list run --depth {} "
                             "saves so",
                             name_of(*settings.save_depth)));
    }
}

bool JobOptions::is_given(char const* option) const
{
    return command_->count(std::string("--") + option) > 0;
}

std::set<std::string> JobOptions::given() const
{
    std::set<std::string> names;
    bool const all = is_given("preset");
    for (SettingRow const& row : setting_table()) {
        if ((row.users & kForMap) != 0 && (all || is_given(row.name))) {
            names.insert(row.name);
        }
    }
    if (all && settings.kind) {
        names.insert("height-map");
    }
    for (char const* name : {"height-map", "normal-map"}) {
        if (is_given(name)) {
            names.insert(name);
        }
    }
    return names;
}

std::optional<Kind> JobOptions::kind() const
{
    return kind_ ? kind_ : settings.kind;
}

void check_list_settings(Settings const& settings)
{
    if (height_reading_of(settings) != HeightReading{}) {
        throw UsageError("--preset", "a job of a list does not hold how heights are read",
                         "give that to umbrix list run, and leave it out of the preset");
    }
}

SourceLook look_at_source(fs::path const& source, Settings const& settings, std::optional<Kind> kind,
                          Caller const& caller)
{
    std::error_code error;
    if (fs::is_directory(source, error)) {
        demand_all_of_a_folder(source, settings, kind);
        return {*kind, "", 0};
    }
    check_input(source);
    if (kind && settings.n_scale) {
        return {*kind, "", 0};
    }
    InfoReport const info = info_of(source, caller);
    if (kind) {
        return {*kind, "", info.width};
    }
    return {info.taken_for, info.because, info.width};
}

LinkedList<n_layer> layers_for_job(fs::path const& stack_file, Settings const& settings, Caller const& caller)
{
    check_input(stack_file);
    StackFile const file = read_stack_file(stack_file);
    std::vector<StackLayer> const& layers = file.description.layers;
    for (StackLayer const& layer : layers) {
        if (layer.is_normal_map) {
            throw Complaint(layer.label + ": kind", "a work list takes every layer for heights",
                            "leave the normal layers out");
        }
    }
    check_layer_files(file.description);
    for (std::string const& note : file.notes) {
        say_note(caller.command, note);
    }
    for (std::size_t i = 1; i < layers.size(); ++i) {
        if (layers[i].blend == 0) {
            say_note(caller.command,
                     layers[i].label +
                         ": blend: where the map takes its normals from the layers, it leaves out "
                         "those of this one");
        }
    }
    // All layers are worked on in the size of the first.
    float const n_scale = n_scale_of(settings, info_of(layers.front().file, caller).width);
    LinkedList<n_layer> records;
    for (std::size_t i = 0; i < layers.size(); ++i) {
        StackLayer const* const next = i + 1 < layers.size() ? &layers[i + 1] : nullptr;
        n_layer record = record_of(layers[i], next, file.description.normal_scale, n_scale);
        record.filename = name_in_list(layers[i].file);
        records.Add(record);
    }
    return records;
}

std::string name_in_list(fs::path const& file)
{
    return fs::absolute(file).lexically_normal().string();
}

} // namespace umbrix_cli
