// SPDX-License-Identifier: MIT
#include "options/describe/help_formatter.h"

#include <fmt/format.h>
#include <sstream>

namespace umbrix_cli {

namespace {

constexpr std::size_t kIndent = 26;
constexpr std::size_t kLineLength = 100;

} // namespace

std::string HelpFormatter::make_group(std::string group, bool is_positional,
                                      std::vector<CLI::Option const*> options) const
{
    // The base class parts the later groups by an empty line and begins each with another.
    bool const first = is_positional || group == "Options";
    std::string const text = CLI::Formatter::make_group(group, is_positional, options);
    return first || text.empty() ? text : text.substr(1);
}

std::string HelpFormatter::make_option(CLI::Option const* option, bool is_positional) const
{
    std::string text =
        fmt::format("  {}{}", make_option_name(option, is_positional), make_option_opts(option));
    text += text.size() + 2 > kIndent ? fmt::format("\n{:{}}", "", kIndent)
                                      : std::string(kIndent - text.size(), ' ');
    std::istringstream words(make_option_desc(option));
    std::size_t column = kIndent;
    for (std::string word; words >> word;) {
        if (column > kIndent && column + 1 + word.size() > kLineLength) {
            text += fmt::format("\n{:{}}", "", kIndent);
            column = kIndent;
        } else if (column > kIndent) {
            text += ' ';
            ++column;
        }
        text += word;
        column += word.size();
    }
    return text + "\n";
}

std::string HelpFormatter::make_option_name(CLI::Option const* option, bool is_positional) const
{
    std::vector<std::string> const& names = option->get_lnames();
    if (names.size() == 2 && names[1] == "no-" + names[0]) {
        return "--[no-]" + names[0];
    }
    return CLI::Formatter::make_option_name(option, is_positional);
}

std::string HelpFormatter::make_option_opts(CLI::Option const* option) const
{
    std::string const type = option->get_type_name();
    return option->get_expected_max() == 0 || type.empty() ? "" : " " + type;
}

} // namespace umbrix_cli
