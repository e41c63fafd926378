// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/settings/settings.h"

#include <set>
#include <string>

namespace umbrixlib::toolkit {

/// The plain part of a job with these settings. @p width is that of its pictures, for a strength of the
/// normals that is worked out; 0 if it is given or not known.
umbrix_data data_for(Settings const& settings, Kind kind, int width);

/// The settings that a job works by. What only other programs tell apart is not in them.
Settings settings_of(umbrix_data const& data);
Kind kind_of(umbrix_data const& data);

/// Whether runs with these settings make normals, so that their strength counts.
bool makes_normals(Settings const& settings, Kind kind);

/// Takes from @p from what the options named in @p given, without dashes, decide; "height-map" and
/// "normal-map" are among them. All else stays as it is, also what no option can say.
void copy_given(umbrix_data const& from, std::set<std::string> const& given, umbrix_data& to);

} // namespace umbrixlib::toolkit
