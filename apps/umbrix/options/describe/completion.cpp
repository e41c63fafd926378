// SPDX-License-Identifier: MIT
#include "options/describe/completion.h"

#include "options/describe/option_words.h"
#include "toolkit/settings/preset.h"
#include "toolkit/settings/profile.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <functional>
#include <string_view>
#include <vector>

namespace umbrix_cli {

namespace {

using Visit = std::function<void(CLI::App const& command, std::string const& path)>;

/// Calls @p visit for the tool with the path "umbrix", for its commands with "umbrix map" and so on down.
void for_each_command(CLI::App const& command, std::string const& path, Visit const& visit)
{
    visit(command, path);
    for (CLI::App const* each : subcommands_of(command)) {
        for_each_command(*each, path + " " + each->get_name(), visit);
    }
}

std::vector<std::string> names_of(std::vector<CLI::App const*> const& commands)
{
    std::vector<std::string> names;
    for (CLI::App const* each : commands) {
        names.push_back(each->get_name());
    }
    return names;
}

/// The names of what is shipped and can be a file, too, where an option takes one: presets, profiles.
std::vector<std::string_view> shipped_names_for(CLI::Option const& option)
{
    auto const is = [&](char const* type) {
        return option.get_type_name() == type || option.get_single_name() == type;
    };
    return is("NAME|FILE")      ? umbrixlib::toolkit::shipped_presets()
           : is("PROFILE|FILE") ? umbrixlib::toolkit::shipped_profiles()
                                : std::vector<std::string_view>();
}

/// The words of the value of an option or an argument.
std::vector<std::string> words_for(CLI::Option const& option)
{
    auto const shipped = shipped_names_for(option);
    return shipped.empty() ? value_words(option) : std::vector<std::string>(shipped.begin(), shipped.end());
}

/// What may stand behind a command that has none below it.
struct Arguments {
    std::vector<std::string> words; ///< None: files.
    bool files = false;             ///< Besides the words.
};

Arguments arguments_of(CLI::App const& command)
{
    Arguments arguments;
    for (CLI::Option const* argument : positionals_of(command)) {
        std::vector<std::string> const more = words_for(*argument);
        arguments.words.insert(arguments.words.end(), more.begin(), more.end());
        arguments.files = arguments.files || !shipped_names_for(*argument).empty();
    }
    return arguments;
}

/// Whether the value may be a file, too.
bool takes_file(CLI::Option const& option)
{
    return option.get_type_name().find("FILE") != std::string::npos;
}

std::vector<std::string> all_spellings(CLI::App const& command)
{
    std::vector<std::string> all;
    for (CLI::Option const* option : options_of(command)) {
        for (std::string const& spelling : spellings(*option)) {
            all.push_back(spelling);
        }
    }
    return all;
}

/// For a string between single quotes of a shell.
std::string shell_quoted(std::string const& text)
{
    std::string result;
    for (char const c : text) {
        result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return result;
}

/// For the parts of an argument of zsh's _arguments.
std::string escaped(std::string const& text)
{
    std::string result;
    for (char const c : text) {
        if (c == '[' || c == ']' || c == ':' || c == '\\') {
            result += '\\';
        }
        result += c;
    }
    return shell_quoted(result);
}

std::string first_sentence(std::string const& description)
{
    return description.substr(0, description.rfind(" ["));
}

/// What completes a value: the words, or a file, or either.
std::string zsh_action(std::vector<std::string> const& words, bool or_file)
{
    std::string const all = fmt::format("{}", fmt::join(words, " "));
    return words.empty() ? "_files" : or_file ? " _umbrix_words_or_files " + all : "(" + all + ")";
}

std::string zsh_option(CLI::Option const& option, std::string const& spelling)
{
    std::string const help = escaped(first_sentence(option.get_description()));
    if (!takes_value(option)) {
        return fmt::format("        '{}[{}]' \\\n", spelling, help);
    }
    return fmt::format("        '{}[{}]:{}:{}' \\\n", spelling, help, escaped(option.get_type_name()),
                       zsh_action(words_for(option), takes_file(option)));
}

std::string zsh_function_name(std::string path)
{
    for (char& c : path) {
        c = c == ' ' || c == '-' ? '_' : c;
    }
    return "_" + path;
}

} // namespace

std::string bash_completion(CLI::App const& tool)
{
    std::string names;
    std::string options;
    std::string values;
    for_each_command(tool, "umbrix", [&](CLI::App const& command, std::string const& path) {
        Arguments const arguments = arguments_of(command);
        names += fmt::format("        '{}') commands='{}' arguments='{}' files={} ;;\n", path,
                             fmt::join(names_of(subcommands_of(command)), " "),
                             fmt::join(arguments.words, " "), arguments.files ? "-f" : "");
        options +=
            fmt::format("        '{}') options='{}' ;;\n", path, fmt::join(all_spellings(command), " "));
        for (CLI::Option const* option : options_of(command)) {
            std::vector<std::string> const words = words_for(*option);
            for (std::string const& spelling : words.empty() ? words : spellings(*option)) {
                values += fmt::format("        '{} {}') words='{}'{} ;;\n", path, spelling,
                                      fmt::join(words, " "), takes_file(*option) ? " files=-f" : "");
            }
        }
    });
    return fmt::format(R"(# Completion of umbrix for bash.
_umbrix_commands() {{
    case $1 in
{}    esac
}}

_umbrix() {{
    local current=${{COMP_WORDS[COMP_CWORD]}} previous=${{COMP_WORDS[COMP_CWORD-1]}}
    local path=umbrix commands= arguments= options= words= files= i
    _umbrix_commands umbrix
    for ((i = 1; i < COMP_CWORD; ++i)); do
        if [[ " $commands " == *" ${{COMP_WORDS[i]}} "* ]]; then
            path="$path ${{COMP_WORDS[i]}}"
            _umbrix_commands "$path"
        fi
    done
    case $path in
{}    esac
    case "$path $previous" in
{}    esac
    if [[ -n $words ]]; then
        COMPREPLY=($(compgen -W "$words" $files -- "$current"))
    elif [[ $current == -* ]]; then
        COMPREPLY=($(compgen -W "$options" -- "$current"))
    elif [[ -n $commands$arguments ]]; then
        COMPREPLY=($(compgen -W "$commands $arguments" $files -- "$current"))
    else
        compopt -o filenames 2> /dev/null
        local IFS=$'\n'
        COMPREPLY=($(compgen -f -- "$current"))
    fi
}}

complete -F _umbrix umbrix
)",
                       names, options, values);
}

std::string zsh_completion(CLI::App const& tool)
{
    std::string functions;
    for_each_command(tool, "umbrix", [&](CLI::App const& command, std::string const& path) {
        std::string body;
        for (CLI::Option const* option : options_of(command)) {
            for (std::string const& spelling : spellings(*option)) {
                body += zsh_option(*option, spelling);
            }
        }
        std::vector<CLI::App const*> const inside = subcommands_of(command);
        if (inside.empty()) {
            Arguments const arguments = arguments_of(command);
            functions += fmt::format("{}() {{\n    _arguments \\\n{}        '*:{}:{}'\n}}\n\n",
                                     zsh_function_name(path), body, arguments.words.empty() ? "file" : "word",
                                     zsh_action(arguments.words, arguments.files));
            return;
        }
        std::string descriptions;
        std::string cases;
        for (CLI::App const* each : inside) {
            descriptions +=
                fmt::format("        '{}:{}'\n", each->get_name(), escaped(each->get_description()));
            cases += fmt::format("            {}) {} ;;\n", each->get_name(),
                                 zsh_function_name(path + " " + each->get_name()));
        }
        functions += fmt::format(R"({}() {{
    local curcontext=$curcontext state line
    local -a commands=(
{}    )
    _arguments -C \
{}        '1:command:->command' \
        '*::argument:->argument'
    case $state in
        command) _describe -t commands command commands ;;
        argument)
            case $line[1] in
{}            esac ;;
    esac
}}

)",
                                 zsh_function_name(path), descriptions, body, cases);
    });
    return "#compdef umbrix\n# Completion of umbrix for zsh.\n\n"
           "_umbrix_words_or_files() {\n    compadd -- \"$@\"\n    _files\n}\n\n" +
           functions +
           "if [ \"$funcstack[1]\" = _umbrix ]; then\n    _umbrix \"$@\"\nelse\n    compdef _umbrix "
           "umbrix\nfi\n";
}

} // namespace umbrix_cli
