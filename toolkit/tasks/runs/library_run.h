// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/observer.h"

#include <cstddef>
#include <functional>
#include <limits>
#include <string>
#include <umbrixlib.h>

namespace umbrixlib::toolkit {

/// Stages that callers name, as the library itself does not.
inline constexpr char const* kBlendingLayers = "Blending Layers";
inline constexpr char const* kBlendingHeights = "Blending Heights";
inline constexpr char const* kFittingRelief = "Fitting Relief";
inline constexpr char const* kMakingHeights = "Making Heights";
inline constexpr char const* kMakingCurvature = "Making Curvature";
inline constexpr char const* kFindingHorizons = "Finding Horizons";
inline constexpr char const* kMakingTexture = "Making Texture";

/// A call into the library, with the progress pair that it writes.
using LibraryCall = std::function<bool(std::string* status, int* progress)>;

/// Makes @p call on a thread of its own and tells @p observer how far it is. Throws a Failure about @p file
/// if the library could not do it or showed an error box, and another one if the machine does not give it all
/// its threads.
/// @param cancel Set as soon as the observer is stopping; may be null.
void run_library(std::string const& file, Observer& observer, LibraryCall const& call,
                 bool* cancel = nullptr);

/// The same for a call from memory to memory, which ends early if the observer is stopping: throws Stopped.
/// One on few texels stays on the calling thread: a thread takes longer to start than that takes.
/// @param texels Of what is worked on.
void run_in_memory(std::string const& file, Observer& observer,
                   std::function<Outcome(RunControl& control)> const& call,
                   std::size_t texels = std::numeric_limits<std::size_t>::max());

} // namespace umbrixlib::toolkit
