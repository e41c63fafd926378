// SPDX-License-Identifier: MIT
#pragma once

#include "interrupts/interrupts.h"
#include "toolkit/settings/defaults.h"
#include "toolkit_names.h"

#include <CLI/App.hpp>
#include <filesystem>
#include <optional>
#include <set>
#include <string>

namespace umbrix_cli {

/// What `umbrix list add` and `umbrix list set` can be told about a job.
struct JobOptions {
    Settings settings = kDefaults;
    std::string search;
    std::string layers; ///< Stack file.

    void declare(CLI::App& command);

    /// The options on the command line that name a setting or a kind, without dashes, in their long form.
    std::set<std::string> given() const;
    bool is_given(char const* option) const;

    std::optional<Kind> kind() const;

    /// Tells what a preset has that a job does not hold.
    void say_what_is_left_out(std::string const& caller) const;

private:
    CLI::App* command_ = nullptr;
    std::optional<Kind> kind_;
};

/// Throws a UsageError if a preset has settings that a list cannot hold.
void check_list_settings(Settings const& settings);

/// The command at work, for which pictures are looked at.
struct Caller {
    std::string const& command; ///< Begins every message: "umbrix list add".
    Interrupts const& interrupts;
};

struct SourceLook {
    Kind kind;
    std::string because; ///< Empty if the kind was given.
    int width;           ///< 0 if nothing asks for it, or it is a folder.
};

/// Looks at a source where something is left to be worked out: its kind, or a strength of the normals that
/// fits its width. Of a folder all has to be given.
SourceLook look_at_source(std::filesystem::path const& source, Settings const& settings,
                          std::optional<Kind> kind, Caller const& caller);

/// The layers of a stack file as a job holds them.
LinkedList<n_layer> layers_for_job(std::filesystem::path const& stack_file, Settings const& settings,
                                   Caller const& caller);

/// The absolute name: a job may run from anywhere.
std::string name_in_list(std::filesystem::path const& file);

} // namespace umbrix_cli
