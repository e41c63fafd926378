// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/failure.h"

namespace umbrixlib::toolkit {

/// Tells of a failure in a process that is about to end.
using LastWords = void (*)(Failure const& failure);

/// Sets what give_up() calls first; null, as in the beginning: nothing.
void set_last_words(LastWords tell);

/// Ends the process at once: for failures inside a library through whose functions no exception can pass. An
/// empty subject stands for the file at work.
[[noreturn]] void give_up(Failure const& failure);

} // namespace umbrixlib::toolkit
