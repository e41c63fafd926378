// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/failure.h"
#include "toolkit/base/note.h"
#include "toolkit/base/phase.h"

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

/// @file
/// The worker's side of the pipe: one JSON object a line, to the descriptor below. A line holds one of
/// {"phase": number}, {"stage": text, "permille": number}, {"file": text}, {"note": text, "kind": number,
/// "detail": flag},
/// {"failure": {...}}, {"result": {...}}. The last two end the job. Texts name files as "input" and "output".

namespace umbrixlib::toolkit {

inline constexpr int kEventDescriptor = 3;

void send_phase(Phase phase);

/// From now on, messages about the "input" or the "output" name @p file; "" ends that. For jobs with several.
void send_file(std::string const& file);
void send_progress(std::string_view stage, int permille);

void send_note(Note const& note);
void send_failure(Failure const& failure);

/// The line that send_failure() sends.
std::string failure_event(Failure const& failure);

void send_result(nlohmann::json const& result);

} // namespace umbrixlib::toolkit
