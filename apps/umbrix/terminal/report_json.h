// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/tasks/reports.h"
#include "toolkit_names.h"

#include <string>

namespace umbrix_cli {

/// What `--json` writes of a report: one object with line breaks, in which bytes that are no UTF-8 are
/// replaced, and numbers that JSON has no word for are null.
std::string json_text(InfoReport const& report, std::string const& file);
std::string json_text(FitReport const& report, std::string const& heights, std::string const& normals);
std::string json_text(DevicesReport const& report);

} // namespace umbrix_cli
