// SPDX-License-Identifier: MIT
#pragma once

#include "terminal/interrupts.h"
#include "toolkit/tasks/jobs.h"
#include "toolkit_names.h"

namespace umbrix_cli {

/// Has a worker run the library's own folder batch. It replaces what is there and does not tell what became
/// of each file. After the first interrupt the file at work is finished, and Stopped thrown.
void run_plain_walk(FolderJob const& job, Interrupts const& interrupts);

} // namespace umbrix_cli
