// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/settings/setting_table.h"

#include <string>
#include <string_view>

namespace umbrixlib::toolkit {

/// The row of that name, whose words '_' may join, too. A Failure that names the nearest if there is none.
SettingRow const& setting_called(std::string_view name);

/// Takes a value in as value_text() writes it. A Failure about the row's name if it is not a right one.
void set_from_text(SettingRow const& row, Settings& settings, std::string const& text);

} // namespace umbrixlib::toolkit
