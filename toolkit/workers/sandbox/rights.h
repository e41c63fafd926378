// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/tasks/jobs.h"

namespace umbrixlib::toolkit {

/// What a worker may ask of the system while it does its job. The fewer the better: a picture may be made to
/// take its decoder over.
enum class Rights {
    /// Memory, threads of its own, and the descriptors that it has. No file is opened by name.
    kDecoding,
    /// The same, and files below one folder, which the library's walk opens by name.
    kFolder,
    /// Nearly all, as drivers of graphics devices read files all over the system, talk to their devices, map
    /// code into memory and run compilers. No other process is touched, there is no network, and files
    /// are written in a few folders only.
    kGraphics,
    /// Those of the user, and no limits: for debuggers.
    kAll
};

/// As messages and the system call them, in their order.
inline constexpr char const* kRightsNames[] = {"decoding", "folder", "graphics", "all"};

constexpr char const* name_of(Rights rights)
{
    return kRightsNames[static_cast<int>(rights)];
}

/// The least that does for @p job.
Rights rights_of(Job const& job);

/// From now on all workers of this process keep kAll. For debuggers; any thread may call it.
void keep_all_rights();
bool all_rights_are_kept();

/// Whether this system's kernel can take rights away from a process.
bool can_take_rights();

} // namespace umbrixlib::toolkit
