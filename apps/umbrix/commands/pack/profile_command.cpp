// SPDX-License-Identifier: MIT
#include "commands/pack/profile_command.h"

#include "commands/shipped_list.h"
#include "options/common_options.h"
#include "terminal/kind_name.h"
#include "terminal/say.h"
#include "toolkit/base/depth.h"
#include "toolkit/files/text_file.h"
#include "toolkit/settings/preset.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace umbrix_cli {

namespace {

constexpr char const* kChannelLetters[] = {"R", "G", "B", "A"};

std::string depth_in_words(ProfileFile const& file)
{
    return file.depth ? fmt::format("depth {}", umbrixlib::toolkit::name_of(*file.depth)) : "the usual depth";
}

void print_profile(std::string const& name, Profile const& profile)
{
    say("{}{}{}", name, profile.description.empty() ? "" : ": ", profile.description);
    say("  green      {}", name_of(profile.normal_y));
    for (std::size_t i = 0; i < kProfileMaps; ++i) {
        ProfileFile const& file = profile.files[i];
        say("  {:10} NAME{}{}, {}", kProfileMapNames[i], file.suffix, profile.format, depth_in_words(file));
    }
    for (std::size_t i = 0; i < profile.channels.size(); ++i) {
        if (!profile.channels[i].empty()) {
            say("  packed {}   {}, without it {}", kChannelLetters[i], profile.channels[i],
                neutral_value(profile.channels[i]));
        }
    }
}

nlohmann::ordered_json as_json(std::string const& name, Profile const& profile)
{
    nlohmann::ordered_json files;
    for (std::size_t i = 0; i < kProfileMaps; ++i) {
        ProfileFile const& file = profile.files[i];
        files[kProfileMapNames[i]] = {
            {"suffix", file.suffix},
            {"depth", file.depth ? umbrixlib::toolkit::name_of(*file.depth) : "auto"}};
    }
    for (std::size_t i = 0; i < profile.channels.size(); ++i) {
        if (!profile.channels[i].empty()) {
            files["packed"][kChannelLetters[i]] = profile.channels[i];
        }
    }
    return {{"profile", name},
            {"description", profile.description},
            {"normal_y", name_of(profile.normal_y)},
            {"format", profile.format},
            {"files", files}};
}

} // namespace

void ProfileCommand::declare(CLI::App& command)
{
    command.require_subcommand(1);
    show_ = command.add_subcommand("show", "Show what a profile says");
    show_->add_option("PROFILE|FILE", name_, "Shipped profile, or a file ending in .toml")
        ->required()
        ->type_name("");
    show_->add_flag("--json", json_, kJsonHelp);
    save_ =
        command.add_subcommand("save", "Write a profile into a file, with every key, to be changed there");
    save_->add_option("FILE", name_, "File to write; its name ends in .toml")->required()->type_name("");
    save_->add_flag("--overwrite", overwrite_, "Replace the file if it exists")->group(kFilesGroup);
    declare_profile(*save_, source_)
        ->description("Profile to begin with: a shipped one or a file ending in .toml; without, what holds "
                      "where there is no profile");
    list_ = command.add_subcommand("list", "List the shipped profiles");
    list_->add_flag("--json", json_, kJsonHelp);
}

void ProfileCommand::show() const
{
    Profile const profile = read_profile(name_);
    if (json_) {
        say_json(as_json(name_, profile), 2);
    } else {
        print_profile(name_, profile);
    }
}

void ProfileCommand::save() const
{
    check_preset_output(name_, overwrite_);
    write_text_file(name_, profile_text(source_.profile.value_or(Profile())), overwrite_);
    say("wrote {}: profile{}", name_, source_ ? fmt::format(", as {} has it", source_.name) : "");
}

void ProfileCommand::list() const
{
    list_shipped("profiles", shipped_profiles(), json_, read_profile);
}

void ProfileCommand::run(Interrupts const&)
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
