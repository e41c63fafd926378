// SPDX-License-Identifier: MIT
#include "commands/list/list_add_command.h"

#include "commands/list/lock_list.h"
#include "options/list_argument.h"
#include "options/map_usage.h"
#include "terminal/complaint.h"
#include "terminal/kind_name.h"
#include "terminal/say.h"
#include "toolkit/lists/list_file.h"
#include "toolkit/lists/list_settings.h"

#include <fmt/format.h>

namespace umbrix_cli {

namespace {

namespace fs = std::filesystem;

std::string const kListAddCommand = "umbrix list add";
constexpr char const* kAllFiles = "*.*";

} // namespace

struct ListAddCommand::NewJob {
    umbrix_node job;
    std::string told; ///< For the message at the end.
};

void ListAddCommand::declare(CLI::App& command)
{
    declare_list(command, file_);
    command
        .add_option("SOURCE", sources_,
                    "Height map, normal map with the heights in its alpha, or a folder of either")
        ->required()
        ->type_name("");
    options_.declare(command);
}

std::string ListAddCommand::pattern_for(std::string const& source) const
{
    std::error_code error;
    if (fs::is_directory(source, error)) {
        return options_.is_given("search") ? options_.search : kAllFiles;
    }
    if (options_.is_given("search")) {
        throw UsageError("--search", fmt::format("{} is no folder", source),
                         "leave it out, or name a folder");
    }
    return "";
}

ListAddCommand::NewJob ListAddCommand::job_for(std::string const& source, Interrupts const& interrupts) const
{
    NewJob added;
    umbrix_node& job = added.job;
    job.search_str = pattern_for(source);
    SourceLook const look =
        look_at_source(source, options_.settings, options_.kind(), Caller{kListAddCommand, interrupts});
    if (look.kind == Kind::kNormalMap && options_.settings.normal_y == NormalY::kDown) {
        throw UsageError("--preset", "its green points down, and a job of a list takes green for up",
                         "turn the green of the picture over, or leave the direction out of the preset");
    }
    static_cast<umbrix_data&>(job) = data_for(options_.settings, look.kind, look.width);
    job.filename = name_in_list(source);
    added.told = fmt::format("{}: {}{}", source, name_of(look.kind),
                             look.because.empty() ? "" : fmt::format(" (guessed: {})", look.because));
    return added;
}

void ListAddCommand::run(Interrupts const& interrupts)
{
    check_map_usage(options_.settings, "");
    options_.say_what_is_left_out(kListAddCommand);
    check_list_settings(options_.settings);
    ListLock const lock = lock_list(file_, kListAddCommand, interrupts);
    umbrix_list list;
    std::error_code error;
    if (fs::exists(fs::symlink_status(file_, error))) {
        read_list(file_, list);
    }
    LinkedList<n_layer> layers;
    if (!options_.layers.empty()) {
        layers = layers_for_job(options_.layers, options_.settings, Caller{kListAddCommand, interrupts});
    }
    std::vector<std::string> told;
    for (std::string const& source : sources_) {
        NewJob added = job_for(source, interrupts);
        added.job.blend_height = layers.count > 0;
        added.job.layers = layers;
        list.items.Add(added.job);
        told.push_back(fmt::format("{}: job {}: {}", file_, list.get_size(), added.told));
    }
    interrupts.check();
    write_list(list, file_, true);
    for (std::string const& each : told) {
        say("{}", each);
    }
}

} // namespace umbrix_cli
