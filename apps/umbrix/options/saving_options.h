// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/saving.h"
#include "toolkit_names.h"

#include <CLI/App.hpp>
#include <optional>

namespace umbrix_cli {

/// Adds --depth, --round, --dither and --compression to @p command.
void declare_saving(CLI::App& command, Saving& saving);

/// Adds --depth alone.
void declare_depth(CLI::App& command, std::optional<umbrixlib::SampleType>& depth);

/// @p saving as the command line has it, with the depth of a preset or a stack file where it gives none.
Saving with_depth(Saving saving, std::optional<umbrixlib::SampleType> depth);

} // namespace umbrix_cli
