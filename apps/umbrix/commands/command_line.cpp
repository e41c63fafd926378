// SPDX-License-Identifier: MIT
#include "commands/command_line.h"

#include "commands/batch_command.h"
#include "commands/convert_command.h"
#include "commands/export_command.h"
#include "commands/fit_command.h"
#include "commands/height_command.h"
#include "commands/light/relight_command.h"
#include "commands/light/view_command.h"
#include "commands/list/list_command.h"
#include "commands/map_command.h"
#include "commands/normal_command.h"
#include "commands/pack/pack_command.h"
#include "commands/pack/profile_command.h"
#include "commands/preset_command.h"
#include "commands/relief/bent_command.h"
#include "commands/relief/curvature_command.h"
#include "commands/relief/horizon_command.h"
#include "commands/stack_command.h"
#include "commands/tell/check_command.h"
#include "commands/tell/devices_command.h"
#include "commands/tell/info_command.h"
#include "commands/tell/self_description_command.h"
#include "options/describe/help_formatter.h"
#include "options/describe/option_words.h"
#include "options/graphics_option.h"
#include "terminal/advice.h"
#include "toolkit/base/suggestion.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <sstream>
#include <string_view>
#include <utility>

namespace umbrix_cli {

namespace {

/// In the order in which --help lists them.
constexpr CommandRow kCommands[] = {
    {"map", "Make an Umbrix map: light from three directions, with occlusion", make_command<MapCommand>},
    {"normal", "Make a tangent-space normal map from a height map", make_command<NormalCommand>},
    {"height", "Make a height map from a normal map, the way back from `normal`",
     make_command<HeightCommand>},
    {"curvature", "Make a curvature or cavity map from a height map or a normal map",
     make_command<CurvatureCommand>},
    {"bent", "Make bent normals, and the occlusion map of one channel, from a height map",
     make_command<BentCommand>},
    {"horizon", "Make a horizon map from a height map: eight directions in two pictures",
     make_command<HorizonCommand>},
    {"stack", "Blend layers into a normal map, a height map and an Umbrix map", make_command<StackCommand>},
    {"relight", "Show the texture of an Umbrix map in a light", make_command<RelightCommand>},
    {"view", "Make a web page that shows an Umbrix map in a light to be moved", make_command<ViewCommand>},
    {"convert", "Save a picture in another format or at another depth, and otherwise as it is",
     make_command<ConvertCommand>},
    {"export", "Write a texture file for engines: DDS or KTX2 with mipmaps, packed or not",
     make_command<ExportCommand>},
    {"pack", "Put channels of several pictures into one", make_command<PackCommand>},
    {"batch", "Make the maps of all pictures in folders, several at a time", make_command<BatchCommand>},
    {"list", "Keep a work list: jobs for many files, in a file of their own", make_command<ListCommand>},
    {"info", "Tell what is in a picture, and what map would take it for", make_command<InfoCommand>},
    {"check", "Tell what is not sound about maps, and mend it", make_command<CheckCommand>},
    {"fit", "Find the relief of a height map that fits a normal map of the same material",
     make_command<FitCommand>},
    {"preset", "Show, write and list presets of options", make_command<PresetCommand>},
    {"profile", "Show, write and list profiles of engines", make_command<ProfileCommand>},
    {"devices", "List the graphics processors that --gpu can take", make_command<DevicesCommand>},
    {"completion", "Print a script that completes this command line", make_command<CompletionCommand>},
    {"manual", "Print a manual page, in the language of man", make_command<ManualCommand>},
};

/// Those that tell of all commands and their options.
constexpr std::string_view kDescribing[] = {"completion", "manual"};

constexpr char const* kNotExpected = "The following arguments were not expected:";

/// "umbrix help map" as "umbrix map --help".
std::vector<std::string> with_help_as_option(std::vector<std::string> words)
{
    if (!words.empty() && words.front() == "help") {
        words.erase(words.begin());
        words.emplace_back("--help");
    }
    return words;
}

bool asks_for_version(std::vector<std::string> const& words)
{
    auto const end = std::find(words.begin(), words.end(), "--");
    return std::any_of(words.begin(), end,
                       [](std::string const& word) { return word == "--version" || word == "-V"; });
}

/// "; perhaps map is meant", or nothing.
std::string perhaps(std::string const& word, std::vector<std::string> const& known)
{
    std::string_view const meant = meant_by(word, {known.begin(), known.end()});
    return meant.empty() ? "" : fmt::format("; perhaps {} is meant", meant);
}

std::vector<std::string> names_of_commands(CLI::App const& command)
{
    std::vector<std::string> names;
    for (CLI::App const* each : subcommands_of(command)) {
        names.push_back(each->get_name());
    }
    return names;
}

/// Whether @p word looks like an option, and @p command has none of that name.
bool is_unknown_option(std::string const& word, CLI::App const& command)
{
    bool const is_long = word.starts_with("--");
    bool const is_short = !is_long && word.size() > 1 && word[0] == '-' &&
                          std::isalpha(static_cast<unsigned char>(word[1])) != 0;
    if (!is_long && !is_short) {
        return false;
    }
    std::string const name = is_long ? word.substr(0, word.find('=')) : word.substr(0, 2);
    return command.get_option_no_throw(name) == nullptr;
}

std::string about_unknown_option(std::string const& word, CLI::App const& command)
{
    std::error_code error;
    if (std::filesystem::exists(word, error)) {
        return fmt::format("{0} counts as an option; give the file as ./{0}, or behind --", word);
    }
    std::vector<std::string> known;
    for (CLI::Option const* option : options_of(command)) {
        for (std::string const& spelling : spellings(*option)) {
            known.push_back(spelling);
        }
    }
    std::string const name = word.substr(0, word.find('='));
    return fmt::format("there is no option {}{}", name,
                       word.starts_with("--") ? perhaps(name, known) : std::string());
}

ParsedLine refusal(std::string const& command, Complaint const& complaint)
{
    ParsedLine parsed;
    parsed.name = command;
    parsed.complaint = error_line(complaint, command);
    parsed.code = complaint.code;
    return parsed;
}

} // namespace

CommandLine::CommandLine()
    : app_("Makes tangent-space normal maps and Umbrix maps from height maps and normal maps.", "umbrix")
{
    app_.formatter(std::make_shared<HelpFormatter>());
    app_.set_version_flag("-V,--version", kVersion, "Print the version");
    app_.footer(kExitCodesHelp);
    app_.require_subcommand(0, 1);
    for (CommandRow const& row : kCommands) {
        CLI::App* const app = app_.add_subcommand(row.name, row.description);
        app->footer(kExitCodesHelp);
        commands_.push_back({app, &row, nullptr});
    }
}

/// A command that describes the tool has to see all.
void CommandLine::declare_those_in(std::vector<std::string> const& words)
{
    auto const is_named = [&](std::string_view name) { return std::ranges::count(words, name) > 0; };
    bool const all = std::ranges::any_of(kDescribing, is_named);
    for (Known& each : commands_) {
        if (!each.command && (all || is_named(each.row->name))) {
            each.command = each.row->make();
            each.command->declare(*each.app);
        }
    }
}

/// The command that the words begin with, or the tool.
CommandLine::Named CommandLine::command_named_in(std::vector<std::string> const& words)
{
    Named named{&app_, app_.get_name()};
    for (std::string const& word : words) {
        auto const found =
            named.app->get_subcommands([&](CLI::App* each) { return each->get_name() == word; });
        if (found.empty()) {
            break;
        }
        named.app = found.front();
        named.name += " " + word;
    }
    return named;
}

/// The word that stands where a command should, and is none.
std::optional<std::string> CommandLine::unknown_command(std::vector<std::string> const& words,
                                                        Named const& named)
{
    auto const depth = static_cast<std::size_t>(std::count(named.name.begin(), named.name.end(), ' '));
    bool const wants_command = !subcommands_of(*named.app).empty() && depth < words.size();
    return wants_command && !words[depth].starts_with('-') ? std::optional(words[depth]) : std::nullopt;
}

/// In a sentence: an unknown option or command, or else what the parser says.
std::string CommandLine::what_is_wrong(std::vector<std::string> const& words, Named const& named,
                                       std::string const& parser_says) const
{
    auto const end = std::find(words.begin(), words.end(), "--");
    auto const strange = std::find_if(
        words.begin(), end, [&](std::string const& word) { return is_unknown_option(word, *named.app); });
    if (strange != end) {
        return about_unknown_option(*strange, *named.app);
    }
    if (auto const word = unknown_command(words, named)) {
        return fmt::format("there is no command {}{}", *word, perhaps(*word, names_of_commands(*named.app)));
    }
    if (parser_says.starts_with(kNotExpected)) { // which lists them from the last to the first
        std::vector<std::string> left = named.app->remaining(true);
        std::sort(left.begin(), left.end(), [&](std::string const& one, std::string const& other) {
            return std::find(words.begin(), words.end(), one) < std::find(words.begin(), words.end(), other);
        });
        return fmt::format("{} {}", kNotExpected, fmt::join(left, " "));
    }
    return parser_says;
}

ParsedLine CommandLine::parse(std::vector<std::string> const& typed)
{
    std::vector<std::string> const words = with_help_as_option(typed);
    declare_those_in(words);
    ParsedLine parsed;
    Named const named = command_named_in(words);
    parsed.name = named.name;
    if (words != typed && unknown_command(words, named)) { // --help would answer for the tool
        parsed.complaint =
            fmt::format("umbrix help: error: {}; see umbrix --help", what_is_wrong(words, named, ""));
        parsed.code = kWrongUsage;
        return parsed;
    }
    if (asks_for_version(words)) {
        parsed.out = fmt::format("{}\n", kVersion);
        return parsed;
    }
    try {
        std::vector<std::string> arguments = with_device_numbers(words);
        std::reverse(arguments.begin(), arguments.end()); // as CLI11 takes them
        app_.parse(std::move(arguments));
    } catch (CLI::Success const& success) {
        std::ostringstream out;
        parsed.code = app_.exit(success, out, out);
        parsed.out = out.str();
        return parsed;
    } catch (CLI::ParseError const& error) {
        parsed.complaint = fmt::format("{0}: error: {1}; see {0} --help", parsed.name,
                                       what_is_wrong(words, named, error.what()));
        parsed.code = kWrongUsage;
        return parsed;
    } catch (Failure const& failure) { // a preset is read while the command line is
        return refusal(parsed.name, complaint_about(failure));
    } catch (Complaint const& complaint) {
        return refusal(parsed.name, complaint);
    }
    for (Known const& each : commands_) {
        if (each.app->parsed()) {
            parsed.command = each.command.get();
            return parsed;
        }
    }
    parsed.complaint = "umbrix: error: no command is given; see umbrix --help";
    parsed.code = kWrongUsage;
    return parsed;
}

} // namespace umbrix_cli
