// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/settings/settings.h"
#include "toolkit_names.h"

#include <CLI/App.hpp>
#include <optional>
#include <string>

namespace umbrix_cli {

/// Adds --normal-y up|down to @p command.
CLI::Option* declare_normal_y(CLI::App& command, std::optional<NormalY>& value,
                              std::string const& description);

} // namespace umbrix_cli
