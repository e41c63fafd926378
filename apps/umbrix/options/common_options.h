// SPDX-License-Identifier: MIT
#pragma once

#include "terminal/progress_display.h"
#include "terminal/supervise.h"
#include "toolkit/batch/picture_file.h"
#include "toolkit/files/stale_temporaries.h"
#include "toolkit/tasks/jobs.h"
#include "toolkit_names.h"

#include <CLI/App.hpp>
#include <filesystem>
#include <optional>
#include <string>

namespace umbrix_cli {

// The groups of options in the help that more than one command has.
inline constexpr char const* kFilesGroup = "Files";
inline constexpr char const* kRunGroup = "Run";

/// Lets workers keep all rights of the user.
void declare_no_sandbox(CLI::App& command);

/// The options that are about files and the run itself, not about the picture.
struct CommonOptions {
    std::string input;
    std::string output; ///< Empty: named after the input.
    bool overwrite = false;
    Saving saving;
    FileHolds holds = FileHolds::kPicture; ///< What is written.
    bool verbose = false;
    ProgressDisplay::Style progress = ProgressDisplay::Style::kAuto;
    double timeout_seconds = 60;
    double max_texels = 268435456; // 2^28, 16384 x 16384

    /// Returns the option of the input, which is required.
    CLI::Option* declare_input(CLI::App& command, std::string const& description,
                               std::string const& name = "INPUT");
    /// @param default_name Of an output that is not named; "": it has to be.
    void declare_output(CLI::App& command, std::string const& default_name);

    /// The same without how samples are saved.
    void declare_output_file(CLI::App& command, std::string const& default_name);

    // Parts of the two above, for commands with inputs and outputs of another kind.
    void declare_limits(CLI::App& command);
    /// Part of declare_output(). @p elsewhere: what stands in for the bar where there is no terminal.
    void declare_progress(CLI::App& command, std::string const& elsewhere = "as lines");

    Supervision supervision(std::string const& command, Interrupts const& interrupts) const;
};

/// A second picture of a job.
template <typename OneJob>
struct SecondOutput {
    std::string file; ///< Empty: it is not wanted.
    Output OneJob::*field = nullptr;
};

/// A picture that a job has made.
template <typename OneJob>
struct Made {
    std::filesystem::path output;
    typename OneJob::Report report;
    double seconds;
};

/// The output that is named, or the default; what killed runs left beside it is removed.
std::filesystem::path prepare_output(CommonOptions const& options, std::string const& suffix);

/// Throws a UsageError if @p output is the file @p input, which is @p what: "the picture of a layer".
void check_that_is_kept(std::filesystem::path const& output, std::filesystem::path const& input,
                        std::string const& what);

/// Throws a UsageError if both names are of one file.
void check_that_outputs_differ(std::filesystem::path const& one, std::filesystem::path const& other);

/// Tells what the user should know of the format of @p output, if anything.
void note_format(std::string const& command, std::filesystem::path const& output);

/// Runs a job that makes one picture: all checks first, then a worker that writes under a temporary name
/// beside the output, then the renaming. Nothing temporary outlives the call, however it ends.
/// @param job    Without its files.
/// @param suffix For the name of an output that was not named: "_Umbrix".
/// @param second Another output, if it is named.
template <typename OneJob>
Made<OneJob> make_picture_file(std::string const& command, CommonOptions const& options, OneJob job,
                               std::string const& suffix, Interrupts const& interrupts,
                               SecondOutput<OneJob> const& second = {})
{
    std::filesystem::path const named = prepare_output(options, suffix);
    std::optional<PictureFile> second_file;
    if (!second.file.empty()) {
        check_that_outputs_differ(named, second.file);
        remove_leftovers_beside(second.file);
        second_file.emplace(options.input, second.file, options.overwrite);
        note_format(command, second.file);
        JobFiles files;
        second_file->name_files(files);
        job.*second.field = {files.output.file, files.output.name, options.saving};
    }
    PictureFile file(options.input, named, options.overwrite, options.holds);
    if (options.holds == FileHolds::kPicture) {
        note_format(command, named);
    }
    job.files.max_texels = options.max_texels;
    job.files.output.saving = options.saving;
    file.name_files(job.files);
    typename OneJob::Report report = supervise(job, options.supervision(command, interrupts));
    interrupts.check();
    if (second_file) {
        second_file->complete();
    }
    file.complete();
    return {named, std::move(report), file.seconds()};
}

} // namespace umbrix_cli
