// SPDX-License-Identifier: MIT
#pragma once

#include "terminal/interrupts.h"
#include "terminal/progress_display.h"
#include "toolkit/tasks/job.h"
#include "toolkit/workers/conversation.h"
#include "toolkit_names.h"

#include <nlohmann/json.hpp>
#include <string>

namespace umbrix_cli {

/// What a supervised job needs besides itself.
struct Supervision {
    std::string command; ///< Begins every message: "umbrix map".
    Briefing briefing;
    bool verbose;
    ProgressDisplay::Style progress;
    Interrupts const& interrupts;
};

/// Has a worker do @p job, shows its progress and notes, and returns its report. A Failure if the worker gave
/// one, crashed, ended without a word or decoded for too long; Stopped if the user wants to stop.
nlohmann::json supervise(Job const& job, Supervision const& supervision);

} // namespace umbrix_cli
