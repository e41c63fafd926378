// SPDX-License-Identifier: MIT
#pragma once

#include "interrupts/interrupts.h"
#include "terminal/say.h"
#include "toolkit/lists/list_lock.h"
#include "toolkit_names.h"

#include <string>

namespace umbrix_cli {

/// Locks the work list @p file for @p command, and says so if it has to wait.
inline ListLock lock_list(std::string const& file, std::string const& command, Interrupts const& interrupts)
{
    return {file, interrupts,
            [&] { say_note(command, file + ": another command is changing a list in its folder; waiting"); }};
}

} // namespace umbrix_cli
