// SPDX-License-Identifier: MIT
#pragma once

namespace umbrixlib::toolkit {

/// Lets DevIL read files through functions that end the process, with a sentence, once a loader goes on and
/// on behind the end of its file: at a file that was cut short some never stop.
void watch_devil_reading();

} // namespace umbrixlib::toolkit
