// SPDX-License-Identifier: MIT
#include "commands/batch_command.h"

#include "options/kind_option.h"
#include "options/map_usage.h"
#include "options/normal_y_option.h"
#include "options/saving_options.h"
#include "options/setting_options.h"
#include "terminal/complaint.h"
#include "terminal/say.h"
#include "terminal/supervise.h"

#include <cstdio>
#include <fmt/format.h>
#include <utility>

namespace umbrix_cli {

/// What a batch can make of each picture.
struct Product {
    char const* option;
    char const* help;
    char const* suffix;
    char const* plural;            ///< For messages.
    Endings endings;               ///< Of the pictures that it is not made of.
    unsigned users;                ///< Sum of SettingUser.
    bool takes_kind;               ///< It can be made of height maps and of normal maps.
    std::optional<ProfileMap> map; ///< What profiles call it; empty: they say nothing of it.
    int parts = 1;                 ///< Pictures that it consists of.
};

namespace {

constexpr Product kProducts[] = {
    {"--map", "Make Umbrix maps [default]", "_Umbrix", "Umbrix maps", Endings::kSurface,
     kForMap | kForHeights, true, ProfileMap::kMap},
    {"--normal", "Make normal maps", "_Normal", "normal maps", Endings::kHeights, kForNormal | kForHeights,
     false, ProfileMap::kNormals},
    {"--height", "Make height maps from normal maps", "_Height", "height maps", Endings::kNormals, kForHeight,
     false, ProfileMap::kHeights},
    {"--curvature",
     "Make curvature or cavity maps",
     "_Curvature",
     "curvature maps",
     Endings::kSurface,
     kForCurvature | kForHeights,
     true,
     {}},
    {"--bent", "Make bent normals from height maps", "_Bent", "bent normals", Endings::kHeights,
     kForBent | kForHeights, false, ProfileMap::kBent},
    {"--ao", "Make occlusion maps of one channel from height maps", "_AO", "occlusion maps of one channel",
     Endings::kHeights, kForBent | kForHeights, false, ProfileMap::kOcclusion},
    {"--horizon",
     "Make horizon maps from height maps, two pictures each",
     "_Horizon",
     "horizon maps",
     Endings::kHeights,
     kForHorizon | kForHeights,
     false,
     {},
     2},
};

bool makes(Product const* product, std::string_view option)
{
    return product->option == option;
}

constexpr char const* kBatchCommand = "umbrix batch";

void say_what_is_left_out(BatchPlan const& plan)
{
    if (plan.outputs_left_out > 0) {
        say_note(kBatchCommand,
                 fmt::format("{} outputs of earlier runs are left out", plan.outputs_left_out));
    }
    for (LeftAlone const& each : plan.left_alone) {
        say_note(kBatchCommand, fmt::format("{}: it is left alone, as its name ends in {}",
                                            each.file.string(), each.ending));
    }
}

} // namespace

BatchCommand::BatchCommand() : product_(kProducts) {}

void BatchCommand::declare(CLI::App& command)
{
    command_ = &command;
    declare_files(*command_);
    declare_input(*command_);
    declare_results_form(*command_, form_);
    declare_workers(*command_, workers_);
    common_.declare_limits(*command_);
    declare_saving(*command_, common_.saving);
    common_.declare_progress(*command_, "not");
    declare_graphics(*command_, graphics_);
    command_
        ->add_flag(
            "--plain", plain_,
            "Have the library walk one folder itself: it replaces outputs, takes those of earlier runs as "
            "inputs and tells of no failure; the kind and --n-scale have to be given")
        ->group(kRunGroup);
    declare_options(*command_, settings_, kForAny);
    declare_profile(*command_, profile_);
}

void BatchCommand::declare_files(CLI::App& command)
{
    command
        .add_option("FOLDER", search_.places,
                    "Folders, files, or patterns for either, such as 'textures/*/rock*.tga'; in "
                    "folders, what ends in _albedo, _roughness, _ao and the like is left alone unless a "
                    "pattern names that ending")
        ->required()
        ->type_name("...");
    declare_patterns(command);
    command.add_flag("-r,--recurse", search_.recurse, "Look into the folders in folders, too")
        ->group(kFilesGroup);
    command
        .add_flag("--include-outputs", include_outputs_,
                  "Take outputs of earlier runs as inputs, too; they are told by their names")
        ->group(kFilesGroup);
    command
        .add_option(
            "--suffix", suffix_,
            "What is put after the name [default _Umbrix for maps, _Normal for normal maps, and so on]")
        ->type_name("TEXT")
        ->group(kFilesGroup);
    command
        .add_option("--keep-tree", keep_tree_,
                    "Write into this folder instead, in folders of the same names; it is made if need be")
        ->type_name("DIR")
        ->group(kFilesGroup);
    auto* const overwrite = command.add_flag("--overwrite", common_.overwrite,
                                             "Replace outputs that exist [default: skip their inputs]");
    auto* const update =
        command.add_flag("--update", update_, "Replace outputs that are older than their inputs");
    overwrite->excludes(update)->group(kFilesGroup);
    update->group(kFilesGroup);
    command.add_flag("-n,--dry-run", dry_run_, "Only print what would be made of what")->group(kFilesGroup);
}

void BatchCommand::declare_patterns(CLI::App& command)
{
    command
        .add_option(
            "--include,--pattern", search_.include,
            "Only files with such a name, in any letter case: '*_H.tga'; may be repeated. Without, or "
            "with an open extension as in '*_H.*', only what is called like a picture is taken from "
            "folders; what ends in _albedo, _roughness and the like is left alone unless the pattern "
            "has that ending in it")
        ->allow_extra_args(false)
        ->type_name("GLOB")
        ->group(kFilesGroup);
    command.add_option("--exclude", search_.exclude, "No files with such a name; may be repeated")
        ->allow_extra_args(false)
        ->type_name("GLOB")
        ->group(kFilesGroup);
}

void BatchCommand::declare_input(CLI::App& command)
{
    std::vector<CLI::Option*> options;
    for (Product const& each : kProducts) {
        auto* const option = command.add_flag_callback(
            each.option, [this, &each] { product_ = &each; }, each.help);
        for (CLI::Option* const other : options) {
            option->excludes(other);
        }
        options.push_back(option);
    }
    declare_kind(command, kind_);
    declare_normal_y(command, normal_y_, "Where green points in normal maps that are read or written")
        ->group("Input");
}

void BatchCommand::validate() const
{
    if (suffix_ && suffix_->find('/') != std::string::npos) {
        throw UsageError("--suffix", "it cannot have a / in it", "name another folder with --keep-tree");
    }
    forbid_options_of_others();
    if (makes(product_, "--map")) {
        check_map_usage(settings_, "");
        check_graphics_usage(graphics_, settings_);
    }
    check_normal_y_usage(normal_y_, kind_);
}

void BatchCommand::forbid_options_of_others() const
{
    auto const forbid = [this](std::string const& option) {
        if (command_->get_option(option)->count() > 0) {
            throw UsageError(option, fmt::format("{} are made without it", product_->plural),
                             makes(product_, "--map")
                                 ? "leave it out"
                                 : fmt::format("leave it out, or leave {} out", product_->option));
        }
    };
    if (!makes(product_, "--map")) {
        forbid("--gpu");
        forbid("--match-cpu");
    }
    if (!product_->takes_kind) {
        forbid("--height-map");
        forbid("--normal-map");
    }
    for (SettingRow const& row : setting_table()) {
        if (row.users != kForPresets && (row.users & product_->users) == 0) {
            forbid(fmt::format("--{}", row.name));
        }
    }
}

BatchChoice BatchCommand::choice() const
{
    BatchChoice choice;
    choice.search = search_;
    choice.search.avoided = include_outputs_ ? "" : keep_tree_;
    choice.include_outputs = include_outputs_;
    choice.endings = product_->endings;
    choice.suffix = suffix_.value_or(profile_ ? profile_.file(*product_->map).suffix : product_->suffix);
    choice.extension = profile_ ? profile_.profile->format : "";
    choice.parts = product_->parts;
    choice.keep_tree = keep_tree_;
    choice.policy = common_.overwrite ? OutputPolicy::kReplace
                    : update_         ? OutputPolicy::kUpdate
                                      : OutputPolicy::kKeep;
    return choice;
}

std::function<PictureJob(BatchFile const& file)> BatchCommand::job_for() const
{
    auto const always = [](auto const& job) { return [job](BatchFile const&) { return job; }; };
    auto const kind = kind_ ? kind_ : settings_.kind;
    if (makes(product_, "--normal")) {
        return always(NormalJob{{}, settings_, normal_y_.value_or(settings_.normal_y)});
    }
    if (makes(product_, "--height")) {
        bool const has_range = command_->get_option("--height-range")->count() > 0;
        return always(
            HeightJob{{}, settings_, normal_y_, has_range ? settings_.height_range : HeightRange{}});
    }
    if (makes(product_, "--curvature")) {
        return always(CurvatureJob{{}, settings_, kind, normal_y_});
    }
    bool const occlusion_alone = makes(product_, "--ao");
    if (occlusion_alone || makes(product_, "--bent")) {
        NormalY const green = normal_y_.value_or(settings_.normal_y);
        return always(BentJob{{}, {}, settings_, green, occlusion_alone});
    }
    if (makes(product_, "--horizon")) {
        HorizonJob const job{{}, {}, settings_, false};
        return [job](BatchFile const& file) {
            HorizonJob part = job;
            part.later_alone = file.part == 1;
            return part;
        };
    }
    MapJob const job{{}, settings_, kind, normal_y_, graphics_};
    return [job](BatchFile const& file) {
        check_map_usage(job.settings, file.target.string());
        return job;
    };
}

BatchOrders BatchCommand::orders() const
{
    BatchOrders orders;
    orders.job_for = job_for();
    orders.max_texels = common_.max_texels;
    orders.policy = choice().policy;
    orders.saving = with_depth(common_.saving, settings_.save_depth);
    orders.timeout_seconds = common_.timeout_seconds;
    orders.workers = workers_.count();
    orders.service = workers_.service();
    orders.dry_run = dry_run_;
    return orders;
}

FolderJob BatchCommand::plain_walk() const
{
    auto const forbid = [this](char const* option) {
        if (command_->get_option(option)->count() > 0) {
            throw UsageError(option, "the library's own walk does not know it",
                             "leave it out, or leave --plain out");
        }
    };
    for (Product const& each : kProducts) {
        if (!makes(&each, "--map")) {
            forbid(each.option);
        }
    }
    for (char const* option : {"--suffix", "--keep-tree", "--overwrite", "--update", "--dry-run", "--json",
                               "--print0", "--jobs", "--isolate", "--include-outputs", "--exclude",
                               "--normal-y", "--match-cpu", "--height-in-alpha", "--profile"}) {
        forbid(option);
    }
    std::error_code error;
    if (search_.places.size() != 1 || !std::filesystem::is_directory(search_.places.front(), error)) {
        throw UsageError("--plain", "it takes one folder", "name a folder that exists");
    }
    if (search_.include.size() > 1) {
        throw UsageError("--include", "the library's own walk takes one pattern", "give one");
    }
    std::optional<Kind> const kind = kind_ ? kind_ : settings_.kind;
    bool const makes_normals =
        kind && settings_.light && (*kind == Kind::kHeightMap || settings_.generate_normal);
    if (!kind || (makes_normals && !settings_.n_scale)) {
        throw UsageError(
            "--plain", "the library guesses nothing",
            kind ? fmt::format("add --n-scale: for pictures 1024 texels wide {}", n_scale_of(settings_, 1024))
                 : "add --height-map or --normal-map");
    }
    return {std::filesystem::canonical(search_.places.front()).string(),
            search_.include.empty() ? "*.*" : search_.include.front(),
            search_.recurse,
            settings_,
            *kind,
            graphics_};
}

void BatchCommand::run_plain_walk(Interrupts const& interrupts) const
{
    FolderJob const job = plain_walk();
    Supervision supervision = common_.supervision(kBatchCommand, interrupts);
    supervision.progress = ProgressDisplay::Style::kNone; // the library names no file
    note_missing_sandbox(kBatchCommand);
    JobDisplay display(supervision);
    auto const say_that_it_is_stopping = [] {
        put_line(stderr, fmt::format("{}: stopping when the file at work is finished; press Ctrl-C again to "
                                     "stop at once, which may leave half of it",
                                     kBatchCommand));
    };
    if (!run_walk(job, display, interrupts, say_that_it_is_stopping, common_.timeout_seconds)) {
        throw Stopped{"the walk was stopped; the same command begins it anew"};
    }
    say("{}: the walk ran to its end; the library does not tell what became of each file", job.folder);
}

/// All files have the profile's format, so its depth is one of that.
void BatchCommand::obey_profile()
{
    if (!profile_) {
        return;
    }
    if (!product_->map) {
        throw UsageError("--profile", fmt::format("profiles say nothing of {}", product_->plural),
                         fmt::format("leave it out, or leave {} out", product_->option));
    }
    common_.saving = with_depth(common_.saving, profile_.file(*product_->map).depth);
    settings_.normal_y = profile_.profile->normal_y;
}

void BatchCommand::run(Interrupts const& interrupts)
{
    validate();
    if (plain_) {
        run_plain_walk(interrupts);
        return;
    }
    obey_profile();
    BatchPlan const plan = plan_batch(choice());
    if (common_.verbose) {
        say_what_is_left_out(plan);
    }
    show_batch(plan, orders(), {kBatchCommand, common_.verbose, form_, common_.progress, {}}, interrupts);
}

} // namespace umbrix_cli
