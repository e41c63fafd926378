// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/settings/settings.h"
#include "toolkit_names.h"

#include <string>

namespace umbrix_cli {

/// Throws a UsageError if no picture could make a map with these settings, a Failure if @p output, where it
/// is named, cannot hold it.
void check_map_usage(Settings const& settings, std::string const& output);

} // namespace umbrix_cli
