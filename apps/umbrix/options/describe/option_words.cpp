// SPDX-License-Identifier: MIT
#include "options/describe/option_words.h"

#include <algorithm>
#include <cctype>

namespace umbrix_cli {

namespace {

bool is_word(std::string const& text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(),
                                        [](unsigned char c) { return std::islower(c) != 0 || c == '-'; });
}

} // namespace

std::vector<std::string> spellings(CLI::Option const& option)
{
    std::vector<std::string> all;
    for (std::string const& name : option.get_snames()) {
        all.push_back("-" + name);
    }
    for (std::string const& name : option.get_lnames()) {
        all.push_back("--" + name);
    }
    return all;
}

bool takes_value(CLI::Option const& option)
{
    return option.get_expected_max() > 0 && (option.get_positional() || !option.get_type_name().empty());
}

std::vector<std::string> value_words(CLI::Option const& option)
{
    std::string const& help = option.get_description();
    std::size_t const open = help.rfind('[');
    std::size_t const end = help.find_first_of(";]", open == std::string::npos ? help.size() : open);
    if (!takes_value(option) || end == std::string::npos) {
        return {};
    }
    std::vector<std::string> words;
    for (std::size_t at = open + 1; at < end;) {
        std::size_t const comma = std::min(help.find(", ", at), end);
        words.push_back(help.substr(at, comma - at));
        at = comma + 2;
    }
    bool const only_words = words.size() > 1 && std::all_of(words.begin(), words.end(), is_word);
    return only_words ? words : std::vector<std::string>();
}

std::vector<CLI::Option const*> options_of(CLI::App const& command)
{
    return command.get_options(
        [](CLI::Option const* option) { return option->nonpositional() && !option->get_group().empty(); });
}

std::vector<CLI::Option const*> positionals_of(CLI::App const& command)
{
    return command.get_options([](CLI::Option const* option) { return option->get_positional(); });
}

std::vector<CLI::App const*> subcommands_of(CLI::App const& command)
{
    return command.get_subcommands([](CLI::App const* each) { return !each->get_group().empty(); });
}

} // namespace umbrix_cli
