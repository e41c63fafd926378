// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/settings/settings.h"
#include "toolkit_names.h"

#include <CLI/App.hpp>
#include <optional>

namespace umbrix_cli {

/// Adds --height-map and --normal-map to @p command, of which one may be given.
void declare_kind(CLI::App& command, std::optional<Kind>& kind);

/// Throws a UsageError about a direction of green for what is a height map for sure.
void check_normal_y_usage(std::optional<NormalY> normal_y, std::optional<Kind> kind);

} // namespace umbrix_cli
