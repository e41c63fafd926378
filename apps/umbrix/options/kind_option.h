// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"
#include "toolkit/settings/settings.h"
#include "toolkit_names.h"

#include <CLI/App.hpp>
#include <optional>
#include <string>

namespace umbrix_cli {

/// Adds --height-map and --normal-map to @p command, of which one may be given.
void declare_kind(CLI::App& command, std::optional<Kind>& kind);

/// Throws a UsageError about a direction of green for what is a height map for sure.
void check_normal_y_usage(std::optional<NormalY> normal_y, std::optional<Kind> kind);

/// Adds --kind normal|height|umbrix to @p command. @p what is what the help begins with: "What the maps are".
CLI::Option* declare_picture_kind(CLI::App& command, std::optional<PictureKind>& kind,
                                  std::string const& what);

} // namespace umbrix_cli
