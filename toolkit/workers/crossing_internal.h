// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/failure.h"
#include "toolkit/base/note.h"
#include "toolkit/base/phase.h"
#include "toolkit/tasks/jobs.h"
#include "toolkit/tasks/reports.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// @file
/// How jobs cross to a worker and how what it tells crosses back: CBOR, in which file names need not be
/// UTF-8, and in front of each message its size in 4 bytes.

namespace umbrixlib::toolkit {

/// The calls of an Observer.
struct PhaseEvent {
    Phase phase = Phase::kReading;
    std::string file;
};
struct StageEvent {
    std::string name;
    int permille = 0;
};
struct NoteEvent {
    std::string file;
    Note note;
};

/// What a worker tells. One of the last two ends its job.
using Event = std::variant<PhaseEvent, StageEvent, NoteEvent, Failure, Report>;

/// Bytes that are no message.
struct Garbled : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A message with its size in front.
std::string pack(Job const& job);
std::string pack(Event const& event);

/// A message without its size, or Garbled.
Job unpack_job(std::string_view message);
Event unpack_event(std::string_view message);

/// Takes the first message off @p bytes and returns it without its size; nothing if it is not all there yet.
/// Garbled if it would be longer than @p longest.
std::optional<std::string> take_message(std::string& bytes, std::size_t longest);

/// No event comes near to that. Jobs have no limit: a stack may have any number of layers.
inline constexpr std::size_t kLongestEvent = 1U << 24U;

} // namespace umbrixlib::toolkit
