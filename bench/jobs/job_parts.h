// SPDX-License-Identifier: MIT
#pragma once

#include "measure/rounds.h"
#include "toolkit/tasks/jobs.h"

namespace umbrixlib::bench {

/// Median seconds that @p job takes in each of its phases, done in this process: "reading", "making",
/// "writing", "checking".
Seconds phases_of(toolkit::Job const& job, int rounds);

/// Median seconds of what @p job cannot do without, each measured by itself: "decode", the library's run
/// "library", and "encode".
Seconds parts_of(toolkit::MapJob const& job, Effort const& effort);

/// Seconds to decode @p file.
double decoding_seconds(std::string const& file, Effort const& effort);

/// Seconds to encode the picture in @p file once more, beside it.
double encoding_seconds(std::string const& file, Effort const& effort);

} // namespace umbrixlib::bench
