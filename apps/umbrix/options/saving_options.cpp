// SPDX-License-Identifier: MIT
#include "options/saving_options.h"

#include <CLI/Error.hpp>
#include <fmt/format.h>
#include <functional>
#include <string>

namespace umbrix_cli {

namespace {

constexpr char const* kSaving = "Saving";

} // namespace

void declare_depth(CLI::App& command, std::optional<umbrixlib::SampleType>& depth)
{
    std::function<void(std::string const&)> const parse_depth = [&depth](std::string const& text) {
        depth = depth_called(text);
        if (!depth) {
            throw CLI::ValidationError("--depth", fmt::format("'{}' is not one of 8, 16, half, float", text));
        }
    };
    command
        .add_option_function<std::string>(
            "--depth", parse_depth,
            "Samples of what is written: 8 or 16 bits, half or float; normals in floats are -1 to 1 "
            "[8, 16, half, float; default 8 where the format has it]")
        ->type_name("DEPTH")
        ->group(kSaving);
}

void declare_saving(CLI::App& command, Saving& saving)
{
    declare_depth(command, saving.depth);
    std::function<void(std::string const&)> const parse_rounding = [&saving](std::string const& text) {
        if (text != "cut" && text != "nearest") {
            throw CLI::ValidationError("--round", fmt::format("'{}' is neither cut nor nearest", text));
        }
        saving.rounding = text == "cut" ? Rounding::kCut : Rounding::kNearest;
    };
    command
        .add_option_function<std::string>(
            "--round", parse_rounding,
            "How 8 bits are made: cut, as maps always were, or nearest, with half the error "
            "[cut, nearest; default cut]")
        ->type_name("HOW")
        ->group(kSaving);
    command.add_flag("--dither", saving.dither, "Hide the steps of 8 bits with noise, the same in every run")
        ->group(kSaving);
    std::function<void(std::string const&)> const parse_compression = [&saving](std::string const& text) {
        if (text != "fast" && text != "default" && text != "small") {
            throw CLI::ValidationError("--compression",
                                       fmt::format("'{}' is not one of fast, default, small", text));
        }
        saving.compression = text == "fast"    ? Compression::kFast
                             : text == "small" ? Compression::kSmall
                                               : Compression::kDefault;
    };
    command
        .add_option_function<std::string>(
            "--compression", parse_compression,
            "What the writing of PNG files saves, time or bytes; the picture is the same "
            "[fast, default, small]")
        ->type_name("WHAT")
        ->group(kSaving);
}

Saving with_depth(Saving saving, std::optional<umbrixlib::SampleType> depth)
{
    saving.depth = saving.depth ? saving.depth : depth;
    return saving;
}

} // namespace umbrix_cli
