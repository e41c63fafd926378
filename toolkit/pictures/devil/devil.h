// SPDX-License-Identifier: MIT
#pragma once

namespace umbrixlib::toolkit {

/// Starts DevIL with rows that come and go with the bottom row first, whatever the format.
void start_devil();

/// Ends it. Not after a load that failed: a damaged file can leave an image behind that DevIL cannot release.
void stop_devil();

} // namespace umbrixlib::toolkit
