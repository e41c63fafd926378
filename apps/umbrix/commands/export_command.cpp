// SPDX-License-Identifier: MIT
#include "commands/export_command.h"

#include "options/kind_option.h"
#include "options/setting_options.h"
#include "terminal/height_words.h"
#include "terminal/say.h"
#include "toolkit/base/whole.h"

#include <CLI/Error.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <functional>
#include <string>

namespace umbrix_cli {

namespace {

constexpr char const* kTextureGroup = "Texture";

/// 1 for "none".
int levels_called(std::string const& text)
{
    if (text == "all" || text == "none") {
        return text == "all" ? kAllLevels : 1;
    }
    double const number = parse_number("--mipmaps", text, 1, kAllLevels);
    if (!is_whole(number)) {
        throw CLI::ValidationError("--mipmaps", fmt::format("'{}' is no whole number", text));
    }
    return static_cast<int>(number);
}

std::string in_words(ExportReport const& report)
{
    if (report.taken_for == PictureKind::kUnknown) {
        return fmt::format("{} channels", report.channels == 1   ? "one"
                                          : report.channels == 3 ? "three"
                                                                 : "four");
    }
    std::string const because = report.because.empty() ? "" : fmt::format(" ({})", report.because);
    return fmt::format("{}{}", report.taken_for == PictureKind::kNormals ? "normals" : "heights", because);
}

} // namespace

void ExportCommand::declare(CLI::App& command)
{
    command_ = &command;
    common_.holds = FileHolds::kTexture;
    common_.declare_output_file(command, "");
    common_.declare_input(command, "Normal map, height map, or any other map");
    declare_picture_kind(command, kind_, "What the picture is")->group("Input");
    declare_format();
    declare_rows(command, settings_, kForHeights);
    command.get_option("--height-from")
        ->description(
            "Only this channel, as heights: the mean of the colours, one of them, alpha or luma (Rec. 709) "
            "[mean, r, g, b, a, luma; default all channels, of height maps the mean]");
}

void ExportCommand::declare_format()
{
    std::function<void(std::string const&)> const parse_format = [this](std::string const& text) {
        format_ = texture_format_called(text);
        if (!format_) {
            throw CLI::ValidationError(
                "--format", fmt::format("'{}' is not one of {}", text, fmt::join(kTextureFormatNames, ", ")));
        }
    };
    command_
        ->add_option_function<std::string>(
            "--format", parse_format,
            fmt::format(
                "How texels are stored: packed in blocks, in 8 or 16 bits or in half floats [{}; default bc5 "
                "for normals, bc4 for heights, else bc7]",
                fmt::join(kTextureFormatNames, ", ")))
        ->type_name("FORMAT")
        ->group(kTextureGroup);
    std::function<void(std::string const&)> const parse_levels = [this](std::string const& text) {
        levels_ = levels_called(text);
    };
    command_
        ->add_option_function<std::string>("--mipmaps", parse_levels,
                                           "Levels in the file, the picture itself among them [all, none, "
                                           "1..32; default all, down to one texel]")
        ->type_name("N")
        ->group(kTextureGroup);
}

void ExportCommand::run(Interrupts const& interrupts)
{
    ExportJob job;
    job.kind = kind_;
    job.format = format_;
    job.levels = levels_;
    job.reading = height_reading_of(settings_);
    if (command_->count("--height-from") > 0) {
        job.channel = settings_.height_from;
    }
    Made<ExportJob> const made = make_picture_file("umbrix export", common_, job, "", interrupts);
    ExportReport const& report = made.report;
    say("wrote {}: {}, {}, {} x {}, {} level{}{}, {} bytes, {:.1f} s", made.output.string(), in_words(report),
        report.form, report.width, report.height, report.levels, report.levels == 1 ? "" : "s",
        told(report.heights), report.bytes, made.seconds);
}

} // namespace umbrix_cli
