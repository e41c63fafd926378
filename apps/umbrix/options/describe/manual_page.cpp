// SPDX-License-Identifier: MIT
#include "options/describe/manual_page.h"

#include "options/describe/help_formatter.h"
#include "options/describe/option_words.h"
#include "terminal/exit_codes.h"
#include "toolkit_names.h"

#include <algorithm>
#include <cctype>
#include <fmt/format.h>

namespace umbrix_cli {

namespace {

/// Text as man(7) takes it: no escapes by accident, dashes that can be copied, no line that looks like a
/// request.
std::string plain(std::string const& text)
{
    std::string result;
    for (char const c : text) {
        bool const starts_line = result.empty() || result.back() == '\n';
        if (c == '\\') {
            result += "\\e";
        } else if (c == '-') {
            result += "\\-";
        } else if (starts_line && (c == '.' || c == '\'')) {
            result += std::string("\\&") + c;
        } else {
            result += c;
        }
    }
    return result;
}

std::string upper(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

std::string entry(CLI::Option const& option, bool is_positional)
{
    HelpFormatter const formatter;
    return fmt::format(".TP\n\\fB{}\\fR{}\n{}\n", plain(formatter.make_option_name(&option, is_positional)),
                       is_positional ? "" : plain(formatter.make_option_opts(&option)),
                       plain(option.get_description()));
}

std::string usage(CLI::App const& command, std::string const& name)
{
    std::string line = fmt::format("\\fB{}\\fR", plain(name));
    if (!options_of(command).empty()) {
        line += " [OPTIONS]";
    }
    for (CLI::Option const* option : positionals_of(command)) {
        std::string const shown = HelpFormatter().make_option_name(option, true);
        std::string const repeated = option->get_expected_max() > 1 ? "..." : "";
        line += option->get_required() ? fmt::format(" {}{}", shown, repeated)
                                       : fmt::format(" [{}{}]", shown, repeated);
    }
    if (!subcommands_of(command).empty()) {
        line += " COMMAND";
    }
    return line;
}

/// The arguments and options of a command, group by group.
std::string arguments(CLI::App const& command)
{
    std::string text;
    for (CLI::Option const* option : positionals_of(command)) {
        text += entry(*option, true);
    }
    for (std::string const& group : command.get_groups()) {
        std::string entries;
        for (CLI::Option const* option : options_of(command)) {
            if (option->get_group() == group) {
                entries += entry(*option, false);
            }
        }
        if (!entries.empty()) {
            text += group == "Options" ? entries : fmt::format(".SS {}\n{}", plain(group), entries);
        }
    }
    return text;
}

std::string commands_inside(CLI::App const& command, std::string const& name, bool with_own_pages)
{
    std::string text;
    for (CLI::App const* each : subcommands_of(command)) {
        std::string const full = name + " " + each->get_name();
        if (with_own_pages) {
            text += fmt::format(".TP\n\\fB{}\\fR(1)\n{}\n", plain(manual_page_name(full)),
                                plain(each->get_description()));
        } else {
            text += fmt::format(".SH {}\n{}\n.PP\n{}\n{}", plain(upper(each->get_name())), usage(*each, full),
                                plain(each->get_description()), arguments(*each));
        }
    }
    return text;
}

} // namespace

std::string manual_page_name(std::string name)
{
    std::replace(name.begin(), name.end(), ' ', '-');
    return name;
}

std::string manual_page(CLI::App const& command, std::string const& name)
{
    bool const whole_tool = command.get_parent() == nullptr;
    std::string text =
        fmt::format(".TH {} 1 \"\" \"UmbrixLib {}\"\n", upper(manual_page_name(name)), UMBRIX_VERSION);
    text +=
        fmt::format(".SH NAME\n{} \\- {}\n", plain(manual_page_name(name)), plain(command.get_description()));
    text += fmt::format(".SH SYNOPSIS\n{}\n", usage(command, name));
    text += fmt::format(".SH OPTIONS\n{}", arguments(command));
    std::string const inside = commands_inside(command, name, whole_tool);
    if (whole_tool) {
        text += fmt::format(".SH COMMANDS\n{}", inside);
    } else {
        text += inside;
    }
    text += fmt::format(".SH EXIT STATUS\n{}\n", plain(kExitCodesHelp));
    if (!whole_tool) {
        text += ".SH SEE ALSO\n\\fBumbrix\\fR(1)\n";
    }
    return text;
}

} // namespace umbrix_cli
