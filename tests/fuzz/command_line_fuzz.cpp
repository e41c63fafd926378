// SPDX-License-Identifier: MIT
// Any words as the tool's command line, up to where the command would begin: a command, a text, or one
// sentence that tells what is wrong.
#include "commands/command_line.h"
#include "demand.h"
#include "one_line.h"
#include "options/describe/completion.h"
#include "options/describe/manual_page.h"
#include "options/describe/option_words.h"

#include <algorithm>
#include <cstdint>

namespace {

using umbrixlib::fuzz::demand;
using namespace umbrix_cli;

/// A word a line. Zero bytes, which no word has, end one, too.
std::vector<std::string> words_of(std::uint8_t const* bytes, std::size_t size)
{
    std::vector<std::string> words;
    std::string word;
    for (std::size_t i = 0; i < size; ++i) {
        if (bytes[i] != '\n' && bytes[i] != '\0') {
            word += static_cast<char>(bytes[i]);
        } else {
            words.push_back(std::move(word));
            word.clear();
        }
    }
    if (!word.empty()) {
        words.push_back(std::move(word));
    }
    return words;
}

/// A preset or profile in a file is read while the words are, and no file is to be read here.
bool names_toml_file(std::vector<std::string> const& words)
{
    auto const is_option = [](std::string const& word) {
        return word.starts_with("--preset") || word.starts_with("--profile");
    };
    auto const is_file = [](std::string const& word) {
        return word.find('/') != std::string::npos || word.ends_with(".toml");
    };
    return std::any_of(words.begin(), words.end(), is_option) &&
           std::any_of(words.begin(), words.end(), is_file);
}

/// What the tool says of itself, all of it.
std::string description_of(CLI::App const& tool)
{
    std::string text = bash_completion(tool) + zsh_completion(tool) + manual_page(tool, "umbrix");
    for (CLI::App const* each : subcommands_of(tool)) {
        text += manual_page(*each, "umbrix " + each->get_name());
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size)
{
    std::vector<std::string> const words = words_of(bytes, size);
    if (names_toml_file(words)) {
        return 0;
    }
    static CommandLine line; // which takes longer to make than to use
    ParsedLine const parsed = line.parse(words);
    demand(parsed.name.starts_with("umbrix"), "messages begin with the tool's name");
    if (parsed.command != nullptr) {
        demand(parsed.out.empty() && parsed.complaint.empty(), "a command begins in silence");
    } else if (parsed.code == kDone) {
        demand(!parsed.out.empty() && parsed.complaint.empty(), "what is asked for is shown");
    } else {
        demand(parsed.code == kWrongUsage && parsed.out.empty(), "wrong words are wrong usage");
        umbrixlib::fuzz::demand_one_line(parsed.complaint);
    }
    bool const describes = parsed.name == "umbrix completion" || parsed.name == "umbrix manual";
    if (describes && parsed.command != nullptr) {
        static std::string const of_fresh = [] {
            CommandLine fresh;
            fresh.parse({"manual"});
            return description_of(fresh.app());
        }();
        demand(description_of(line.app()) == of_fresh, "the tool says of itself what it says before parsing");
    }
    return 0;
}
