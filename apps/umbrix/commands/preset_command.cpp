// SPDX-License-Identifier: MIT
#include "commands/preset_command.h"

#include "commands/shipped_list.h"
#include "options/common_options.h"
#include "options/kind_option.h"
#include "options/map_usage.h"
#include "options/normal_y_option.h"
#include "options/saving_options.h"
#include "options/setting_options.h"
#include "terminal/say.h"
#include "toolkit/files/text_file.h"

#include <CLI/Error.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace umbrix_cli {

namespace {

bool differs(SettingRow const& row, Settings const& settings)
{
    return value_text(row, settings) != value_text(row, kDefaults);
}

int count_of_differences(Settings const& settings)
{
    int count = 0;
    for (SettingRow const& row : setting_table()) {
        count += differs(row, settings) ? 1 : 0;
    }
    return count;
}

void print_table(std::string const& name, Preset const& preset)
{
    say("{}{}{}", name, preset.description.empty() ? "" : ": ", preset.description);
    char const* group = "";
    for (SettingRow const& row : setting_table()) {
        if (group != row.group) {
            group = row.group;
            say("{}:", group);
        }
        std::string const value = value_text(row, preset.settings);
        if (differs(row, preset.settings)) {
            say("* {:17} {:12} default {}", preset_key(row), value, value_text(row, kDefaults));
        } else {
            say("  {:17} {}", preset_key(row), value);
        }
    }
    say("* differs from the default: {} of {}", count_of_differences(preset.settings),
        setting_table().size());
}

void print_json(std::string const& name, Preset const& preset)
{
    nlohmann::ordered_json options;
    nlohmann::ordered_json different = nlohmann::ordered_json::array();
    for (SettingRow const& row : setting_table()) {
        options[preset_key(row)] = nlohmann::ordered_json::parse(preset_value(row, preset.settings));
        if (differs(row, preset.settings)) {
            different.push_back(preset_key(row));
        }
    }
    say_json({{"preset", name},
              {"description", preset.description},
              {"options", options},
              {"different_from_default", different}},
             2);
}

} // namespace

void PresetCommand::declare(CLI::App& command)
{
    command.require_subcommand(1);
    show_ = command.add_subcommand("show", "Show the values of a preset and which differ from the defaults");
    save_ = command.add_subcommand("save", "Write options, and those of another preset, into a new one");
    list_ = command.add_subcommand("list", "List the shipped presets");
    declare_show(*show_);
    declare_save(*save_);
    declare_list(*list_);
}

void PresetCommand::declare_show(CLI::App& command)
{
    command.add_option("NAME|FILE", name_, "Shipped preset, or a file ending in .toml")
        ->required()
        ->type_name("");
    command.add_flag("--json", json_, kJsonHelp);
}

void PresetCommand::declare_save(CLI::App& command)
{
    command.add_option("FILE", name_, "File to write; its name ends in .toml")->required()->type_name("");
    command.add_flag("--overwrite", overwrite_, "Replace the file if it exists")->group(kFilesGroup);
    std::function<void(std::string const&)> const describe_it = [this](std::string const& text) {
        if (!is_one_line(text)) {
            throw CLI::ValidationError("--description", "it has line breaks or other control characters");
        }
        description_ = text;
    };
    command.add_option_function<std::string>("--description", describe_it, "One line about it")
        ->type_name("TEXT")
        ->group(kFilesGroup);
    declare_kind(command, kind_);
    declare_normal_y(command, normal_y_, "Where green points in a normal map")->group("Input");
    declare_options(command, settings_, kForAny);
    declare_depth(command, settings_.save_depth);
}

void PresetCommand::declare_list(CLI::App& command)
{
    command.add_flag("--json", json_, kJsonHelp);
}

void PresetCommand::show() const
{
    Preset const preset = read_preset(name_);
    if (json_) {
        print_json(name_, preset);
    } else {
        print_table(name_, preset);
    }
}

void PresetCommand::save()
{
    settings_.kind = kind_ ? kind_ : settings_.kind;
    settings_.normal_y = normal_y_.value_or(settings_.normal_y);
    check_preset_output(name_, overwrite_);
    check_map_usage(settings_, "");
    write_text_file(name_, preset_text({description_, settings_}), overwrite_);
    say("wrote {}: preset, {} of {} options differ from the defaults", name_, count_of_differences(settings_),
        setting_table().size());
}

void PresetCommand::list() const
{
    list_shipped("presets", shipped_presets(), json_, read_preset);
}

void PresetCommand::run(Interrupts const&)
{
    if (show_->parsed()) {
        show();
    } else if (save_->parsed()) {
        save();
    } else {
        list();
    }
}

} // namespace umbrix_cli
