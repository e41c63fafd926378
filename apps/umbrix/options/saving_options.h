// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/saving.h"
#include "toolkit_names.h"

#include <CLI/App.hpp>

namespace umbrix_cli {

/// Adds --depth, --round and --dither to @p command.
void declare_saving(CLI::App& command, Saving& saving);

} // namespace umbrix_cli
