// SPDX-License-Identifier: MIT
#include "commands/list/list_set_command.h"

#include "commands/list/lock_list.h"
#include "options/list_argument.h"
#include "options/map_usage.h"
#include "options/setting_options.h"
#include "terminal/complaint.h"
#include "terminal/say.h"
#include "toolkit/lists/list_file.h"
#include "toolkit/lists/list_settings.h"

#include <fmt/format.h>

namespace umbrix_cli {

namespace {

std::string const kListSetCommand = "umbrix list set";

/// The settings that a job has, with those from the command line in their place.
Settings merged(umbrix_data const& data, Settings const& told, std::set<std::string> const& given)
{
    Settings settings = settings_of(data);
    for (SettingRow const& row : setting_table()) {
        if (given.contains(row.name)) {
            std::visit([&](auto field) { settings.*field = told.*field; }, row.field);
        }
    }
    if (given.contains("relief") && !given.contains("h-scale")) {
        settings.h_scale = std::nullopt;
    }
    return settings;
}

} // namespace

void ListSetCommand::declare(CLI::App& command)
{
    declare_list(command, file_);
    command.add_option("INDEX", number_, "Number of the job; the first is 1")->required()->type_name("");
    options_.declare(command);
    command.add_flag("--no-layers", no_layers_, "Take the layers away")
        ->group("Source")
        ->excludes(command.get_option("--layers"));
}

void ListSetCommand::change_numbers(umbrix_node& job, Interrupts const& interrupts) const
{
    std::set<std::string> const given = options_.given();
    if (given.empty()) {
        return;
    }
    check_list_settings(options_.settings);
    Settings const settings = merged(job, options_.settings, given);
    check_map_usage(settings, "");
    Kind const kind = options_.kind().value_or(kind_of(job));
    int const width =
        settings.n_scale
            ? 0
            : look_at_source(job.filename, settings, kind, Caller{kListSetCommand, interrupts}).width;
    bool const made_normals = job.generate_normal;
    copy_given(data_for(settings, kind, width), given, job);
    bool const asks_for_strength = given.contains("relief") || !made_normals;
    if (job.generate_normal && asks_for_strength && !given.contains("n-scale")) {
        say_note(kListSetCommand,
                 fmt::format("the strength of the normals stays {}; --n-scale auto fits it to the relief",
                             job.n_scale));
    }
}

void ListSetCommand::change_layers(umbrix_node& job, Interrupts const& interrupts) const
{
    if (!no_layers_ && options_.layers.empty()) {
        return;
    }
    LinkedList<n_layer> layers;
    if (!no_layers_) {
        Settings settings = settings_of(job);
        settings.n_scale = std::nullopt; // each layer's own, or the one that fits the job's relief
        layers = layers_for_job(options_.layers, settings, Caller{kListSetCommand, interrupts});
    }
    while (job.layers.count != 0) {
        job.layers.RemoveFirst();
    }
    for (auto const* each = layers.head; each != nullptr; each = each->next) {
        job.layers.Add(each->data);
    }
    job.blend_height = layers.count != 0;
}

void ListSetCommand::run(Interrupts const& interrupts)
{
    if (options_.given().empty() && !options_.is_given("search") && options_.layers.empty() && !no_layers_) {
        throw UsageError("INDEX", "nothing is told to be changed", "name an option");
    }
    options_.say_what_is_left_out(kListSetCommand);
    ListLock const lock = lock_list(file_, kListSetCommand, interrupts);
    umbrix_list list;
    read_list(file_, list);
    umbrix_node& job = *list.items.GetRef(index_of_job(list, file_, number_));
    change_numbers(job, interrupts);
    change_layers(job, interrupts);
    if (options_.is_given("search")) {
        job.search_str = options_.search;
    }
    interrupts.check();
    write_list(list, file_, true);
    say("{}: job {} changed", file_, number_);
}

} // namespace umbrix_cli
