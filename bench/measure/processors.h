// SPDX-License-Identifier: MIT
#pragma once

namespace umbrixlib::bench {

/// Keeps the process to the last @p count processors that it may use, and starts it afresh if there are more:
/// OpenMP and the libraries compared with count the processors when they are loaded. Call it first in main.
/// @return How many there are, at most @p count.
int keep_to_processors(int count, char** words);

} // namespace umbrixlib::bench
