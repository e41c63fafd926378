// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/settings/settings.h"

#include <nlohmann/json_fwd.hpp>

namespace umbrixlib::toolkit {

/// The settings as a job carries them, by name, and back.
nlohmann::json to_json(Settings const& settings);
Settings settings_from_json(nlohmann::json const& fields);

} // namespace umbrixlib::toolkit
