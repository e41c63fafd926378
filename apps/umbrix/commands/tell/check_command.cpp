// SPDX-License-Identifier: MIT
#include "commands/tell/check_command.h"

#include "options/kind_option.h"
#include "options/normal_y_option.h"
#include "options/setting_options.h"
#include "terminal/advice.h"
#include "terminal/kind_name.h"
#include "terminal/report_json.h"
#include "terminal/say.h"
#include "toolkit/files/preflight.h"
#include "toolkit/files/stale_temporaries.h"
#include "toolkit/pictures/naming.h"
#include "toolkit/workers/run_one.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace umbrix_cli {

namespace {

constexpr char const* kCheckCommand = "umbrix check";
constexpr char const* kCheckGroup = "Check";

/// Beside @p file, with all of its name, as the copy is the same map.
std::filesystem::path mended_name(std::filesystem::path const& file)
{
    return default_output(file.parent_path() / (file.stem().string() + "_Fixed" + file.extension().string()),
                          "");
}

std::string green_in_words(CheckReport const& report)
{
    if (report.taken_for != PictureKind::kNormals) {
        return "";
    }
    return report.green ? fmt::format(", green {}", name_of(*report.green)) : ", its slopes tell no green";
}

std::string mode_in_words(CheckReport const& report)
{
    if (report.taken_for != PictureKind::kLight) {
        return "";
    }
    return report.mode ? fmt::format(", mode {}", name_of_mode(*report.mode))
                       : ", its light is not looked at";
}

std::string count_in_words(std::size_t findings)
{
    return findings == 0 ? "sound" : fmt::format("{} finding{}", findings, findings == 1 ? "" : "s");
}

} // namespace

void CheckCommand::declare(CLI::App& command)
{
    command.add_option("MAP", files_, "Normal maps, height maps and Umbrix maps")
        ->required()
        ->type_name("...");
    common_.declare_limits(command);
    common_.declare_progress(command);
    command.add_flag("--json", json_, "Write one JSON object a map instead of text");
    declare_picture_kind(command, kind_, "What the maps are")->group(kCheckGroup);
    declare_normal_y(command, normal_y_, "Where green should point in normal maps")
        ->description("Where green should point in normal maps: up (OpenGL) or down (DirectX) [up, down; "
                      "default: anywhere]")
        ->group(kCheckGroup);
    declare_rows(command, settings_, kForCheck);
    mode_ = command.get_option("--mode");
    mode_->description("Light of Umbrix maps [projection, unit, flat, squared; default: as the file tells]")
        ->group(kCheckGroup);
    declare_fix(command);
}

void CheckCommand::declare_fix(CLI::App& command)
{
    command
        .add_flag(
            "--fix", fix_,
            "Write a mended copy where a fix is exact: of the length of normals, of blue, of the value of "
            "flat ground, and of green against --normal-y")
        ->group(kFilesGroup);
    command
        .add_option(
            "-o,--output", common_.output,
            "The mended copy of the only map; its extension names the format [default MAP_Fixed beside it]")
        ->type_name("FILE")
        ->group(kFilesGroup);
    command.add_flag("--overwrite", common_.overwrite, "Replace mended copies that exist")
        ->group(kFilesGroup);
}

void CheckCommand::validate() const
{
    if (!common_.output.empty() && !fix_) {
        throw UsageError("--output", "nothing is written without --fix", "add --fix, or leave it out");
    }
    if (!common_.output.empty() && files_.size() > 1) {
        throw UsageError("--output", "there is more than one map", "leave it out, or name one map");
    }
}

CheckJob CheckCommand::job() const
{
    CheckJob job;
    job.files.max_texels = common_.max_texels;
    job.kind = kind_;
    job.normal_y = normal_y_;
    if (mode_->count() > 0) {
        job.mode = settings_.mode;
    }
    auto const borders = borders_of(settings_);
    job.h_tile = borders.h_tile;
    job.v_tile = borders.v_tile;
    return job;
}

CheckReport CheckCommand::check(std::string const& file, JobDisplay& display, Interrupts const& interrupts)
{
    CheckJob order = job();
    order.files.input = file;
    written_.clear();
    if (!fix_) {
        check_input(file);
        return run_one(order, display, interrupts, common_.timeout_seconds);
    }
    std::filesystem::path const named =
        common_.output.empty() ? mended_name(file) : std::filesystem::path(common_.output);
    remove_leftovers_beside(named);
    PictureFile copy(file, named, common_.overwrite);
    copy.name_files(order.files);
    CheckReport report = run_one(order, display, interrupts, common_.timeout_seconds);
    interrupts.check();
    if (!report.mended.empty()) {
        copy.complete();
        written_ = named.string();
        note_format(kCheckCommand, named);
    }
    return report;
}

void CheckCommand::tell(std::string const& file, CheckReport const& report) const
{
    if (json_) {
        say_json(json_of(report, file, written_), files_.size() == 1 ? 2 : -1);
        return;
    }
    say("{}: {}, {} x {}{}{}: {}", file, name_of(report.taken_for), report.width, report.height,
        green_in_words(report), mode_in_words(report), count_in_words(report.findings.size()));
    for (Finding const& finding : report.findings) {
        say("  {}: {}{}", finding.name, finding.text,
            finding.fix.empty() ? "" : fmt::format("; --fix {}", finding.fix));
    }
    if (!written_.empty()) {
        say("  wrote {}: without {}", written_, fmt::join(report.mended, ", "));
    }
}

void CheckCommand::run(Interrupts const& interrupts)
{
    validate();
    note_missing_sandbox(kCheckCommand);
    Supervision const supervision = common_.supervision(kCheckCommand, interrupts);
    JobDisplay display(supervision);
    for (std::string const& file : files_) {
        interrupts.check();
        try {
            CheckReport const report = check(file, display, interrupts);
            tell(file, report);
            if (!report.findings.empty() && code_ == kDone) {
                code_ = kFindings;
            }
        } catch (Failure const& failure) {
            if (files_.size() == 1) {
                throw;
            }
            put_line(stderr, error_line(complaint_about(failure), kCheckCommand));
            code_ = kInputFailed;
        }
    }
}

} // namespace umbrix_cli
