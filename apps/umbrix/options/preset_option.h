// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/settings/settings.h"
#include "toolkit_names.h"

#include <CLI/App.hpp>

namespace umbrix_cli {

/// Adds --preset to @p command. Declared before the options that it sets, so that it acts before them.
void declare_preset(CLI::App& command, Settings& settings);

} // namespace umbrix_cli
