// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

namespace umbrixlib::toolkit {

/// Stages that callers name, as the library itself does not.
inline constexpr char const* kBlendingLayers = "Blending Layers";
inline constexpr char const* kFittingRelief = "Fitting Relief";

/// Runs @p work, one call into the library, on a thread of its own, and sends its progress while it runs.
/// Throws a Failure if the machine does not give it all its threads, or if the library showed an error box.
void run_library(std::function<bool(std::string* status, int* progress)> const& work);

} // namespace umbrixlib::toolkit
