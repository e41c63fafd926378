// SPDX-License-Identifier: MIT
#pragma once

#include "document/state.h"

#include <filesystem>
#include <string>
#include <string_view>

/// @file
/// A document as TOML. Settings have the keys of presets, layers those of stack files. What is not mentioned
/// is as in a new document.

namespace umbrix_desktop {

/// What a project file holds.
struct Project {
    State state;
    std::string saved_as; ///< Of a copy that was made for a crash: the project file; "": none yet.
};

/// The text of a project. Names of files below @p folder are relative to it, all others absolute. A Failure
/// if a name is no UTF-8, which TOML is.
/// @param folder Absolute; "": all names stay absolute.
std::string project_text(Project const& project, std::filesystem::path const& folder = {});

/// What such a text says. A Failure names @p subject, the line and the key at fault.
/// @param folder That relative names count from.
Project project_in(std::string_view text, std::filesystem::path const& folder, std::string const& subject);

/// Writes @p state under a temporary name and then gives it that of @p file, which it replaces. A Failure if
/// it cannot be written; what was there stays then.
void save_project(State const& state, std::filesystem::path const& file);

/// Reads a project file, with relative names counted from its folder.
Project read_project(std::filesystem::path const& file);

} // namespace umbrix_desktop
