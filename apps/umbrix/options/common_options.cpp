// SPDX-License-Identifier: MIT
#include "options/common_options.h"

#include "options/saving_options.h"
#include "options/setting_options.h"
#include "terminal/complaint.h"
#include "terminal/say.h"
#include "toolkit/base/text.h"
#include "toolkit/pictures/naming.h"
#include "toolkit/pictures/output_format.h"
#include "toolkit/workers/sandbox/rights.h"

#include <CLI/Error.hpp>
#include <fmt/format.h>
#include <utility>

namespace umbrix_cli {

namespace {

ProgressDisplay::Style parse_style(std::string const& text)
{
    using Style = ProgressDisplay::Style;
    constexpr std::pair<char const*, Style> kStyles[] = {
        {"auto", Style::kAuto}, {"bar", Style::kBar}, {"lines", Style::kLines}, {"none", Style::kNone}};
    for (auto const& [name, style] : kStyles) {
        if (text == name) {
            return style;
        }
    }
    throw CLI::ValidationError("--progress", fmt::format("'{}' is not one of auto, bar, lines, none", text));
}

void add_number(CLI::App& command, char const* option, double& value, double minimum, double maximum,
                char const* description)
{
    std::function<void(std::string const&)> const parse = [=, &value](std::string const& text) {
        value = parse_number(option, text, minimum, maximum);
    };
    command.add_option_function<std::string>(option, parse, description)->type_name("N")->group(kRunGroup);
}

} // namespace

void declare_no_sandbox(CLI::App& command)
{
    command
        .add_flag_callback("--no-sandbox", keep_all_rights,
                           "For debuggers: let the process that reads pictures keep all rights of yours")
        ->group(kRunGroup);
}

CLI::Option* CommonOptions::declare_input(CLI::App& command, std::string const& description,
                                          std::string const& name)
{
    CLI::Option* const option = command.add_option(name, input, description)->required()->type_name("");
    declare_limits(command);
    return option;
}

void CommonOptions::declare_limits(CLI::App& command)
{
    command.add_flag("-v,--verbose", verbose, "Say more about what is done")->group(kRunGroup);
    add_number(command, "--timeout", timeout_seconds, 0.001, 86400,
               "Longest time that decoding a file may take [seconds; default 60]");
    add_number(command, "--max-texels", max_texels, 1, 4294836225.0,
               "Largest picture that is worked on [texels; default 268435456]");
    declare_no_sandbox(command);
}

void CommonOptions::declare_output_file(CLI::App& command, std::string const& default_name)
{
    std::string const otherwise = default_name.empty() ? "" : fmt::format(" [default {}]", default_name);
    command
        .add_option("-o,--output", output,
                    fmt::format("File to write; its extension names the format{}", otherwise))
        ->type_name("FILE")
        ->group(kFilesGroup)
        ->required(default_name.empty());
    command.add_flag("--overwrite", overwrite, "Replace the output if it exists")->group(kFilesGroup);
    declare_progress(command);
}

void CommonOptions::declare_output(CLI::App& command, std::string const& default_name)
{
    declare_output_file(command, default_name);
    declare_saving(command, saving);
}

void CommonOptions::declare_progress(CLI::App& command, std::string const& elsewhere)
{
    std::function<void(std::string const&)> const parse = [this](std::string const& text) {
        progress = parse_style(text);
    };
    command
        .add_option_function<std::string>(
            "--progress", parse,
            fmt::format("Show progress as a bar, as lines, not at all, or as a bar where there is a terminal "
                        "and else {} [auto, bar, lines, none; default auto]",
                        elsewhere))
        ->type_name("HOW")
        ->group(kRunGroup);
}

Supervision CommonOptions::supervision(std::string const& command, Interrupts const& interrupts) const
{
    return {command, timeout_seconds, verbose, progress, interrupts};
}

std::filesystem::path prepare_output(CommonOptions const& options, std::string const& suffix)
{
    std::filesystem::path named = options.output.empty() ? default_output(options.input, suffix)
                                                         : std::filesystem::path(options.output);
    remove_leftovers_beside(named);
    return named;
}

void check_that_is_kept(std::filesystem::path const& output, std::filesystem::path const& input,
                        std::string const& what)
{
    std::error_code error;
    if (std::filesystem::equivalent(output, input, error)) {
        throw UsageError(output.string(), fmt::format("it is {}, which would be lost", what),
                         "give another name");
    }
}

void check_that_outputs_differ(std::filesystem::path const& one, std::filesystem::path const& other)
{
    auto const key = [](std::filesystem::path const& file) {
        return std::filesystem::weakly_canonical(std::filesystem::absolute(file));
    };
    if (key(one) == key(other)) {
        throw UsageError(other.string(), "both pictures would go to the same file", "give each its own name");
    }
}

void note_format(std::string const& command, std::filesystem::path const& output)
{
    OutputFormat const& format = *output_format(output);
    if (*format.warning != '\0') {
        say_note(command, output.string() + ": " + format.warning);
    }
}

} // namespace umbrix_cli
