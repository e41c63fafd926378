// SPDX-License-Identifier: MIT
#include "commands/tell/self_description_command.h"

#include "options/describe/completion.h"
#include "options/describe/manual_page.h"
#include "options/describe/option_words.h"
#include "terminal/complaint.h"
#include "terminal/put_text.h"

#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <map>

namespace umbrix_cli {

namespace {

constexpr char const* kTool = "umbrix";

void write_all(std::map<std::string, std::string> const& pages, std::filesystem::path const& folder)
{
    for (auto const& [name, text] : pages) {
        std::filesystem::path const file = folder / (manual_page_name(name) + ".1");
        std::ofstream out(file);
        if (!(out << text).flush()) {
            throw Complaint(file.string(), "the page cannot be written", "check the folder");
        }
    }
}

} // namespace

void CompletionCommand::declare(CLI::App& command)
{
    tool_ = command.get_parent();
    command.add_option("SHELL", shell_, "Shell that takes the script [bash, zsh]")->required()->type_name("");
}

void CompletionCommand::run(Interrupts const&)
{
    if (shell_ != "bash" && shell_ != "zsh") {
        throw UsageError(shell_, "there is no completion for this shell", "give bash or zsh");
    }
    put_text(stdout, shell_ == "bash" ? bash_completion(*tool_) : zsh_completion(*tool_));
}

void ManualCommand::declare(CLI::App& command)
{
    tool_ = command.get_parent();
    auto* const page =
        command.add_option("COMMAND", command_, "Command that it is about [default: the tool as a whole]")
            ->type_name("");
    command.add_option("--all", folder_, "Write all pages into a folder instead")
        ->type_name("FOLDER")
        ->excludes(page);
}

void ManualCommand::run(Interrupts const&)
{
    std::map<std::string, std::string> pages;
    pages[kTool] = manual_page(*tool_, kTool);
    for (CLI::App const* each : subcommands_of(*tool_)) {
        std::string const name = fmt::format("{} {}", kTool, each->get_name());
        pages[name] = manual_page(*each, name);
    }
    if (!folder_.empty()) {
        write_all(pages, folder_);
        return;
    }
    auto const asked = pages.find(command_.empty() ? kTool : fmt::format("{} {}", kTool, command_));
    if (asked == pages.end()) {
        throw UsageError(command_, "there is no such command", "umbrix --help lists them");
    }
    put_text(stdout, asked->second);
}

} // namespace umbrix_cli
