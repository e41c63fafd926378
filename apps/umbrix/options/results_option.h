// SPDX-License-Identifier: MIT
#pragma once

#include "terminal/batch_writer.h"

#include <CLI/App.hpp>

namespace umbrix_cli {

/// Adds --json and --print0, for commands that work on many files.
void declare_results_form(CLI::App& command, ResultsForm& form);

} // namespace umbrix_cli
