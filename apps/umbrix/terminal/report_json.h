// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/tasks/reports.h"
#include "toolkit_names.h"

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace umbrix_cli {

/// What `--json` writes of a report; "" for a file that was not written.
nlohmann::json json_of(InfoReport const& report, std::string const& file);
nlohmann::json json_of(CheckReport const& report, std::string const& file, std::string const& written);
nlohmann::json json_of(FitReport const& report, std::string const& heights, std::string const& normals);
nlohmann::json json_of(DevicesReport const& report);

} // namespace umbrix_cli
