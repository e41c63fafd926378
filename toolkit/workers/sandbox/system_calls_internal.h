// SPDX-License-Identifier: MIT
#pragma once

#include <seccomp.h>
#include <span>

/// @file
/// The system calls of each filter by name: what a worker with these Rights may call, or may not.

namespace umbrixlib::toolkit {

struct SystemCall {
    char const* name;
    int number; ///< Below 0 where the processor's calls do not have it.
};

/// Of decoding and computing, whatever the arguments.
std::span<SystemCall const> calls_of_computing();

/// What is allowed with some arguments only: filter.cpp tells which.
std::span<SystemCall const> calls_by_argument();

/// Of files by name; besides the above for the walk of a folder.
std::span<SystemCall const> calls_of_files();

/// What is refused even to the drivers of graphics devices: other processes, the network, what only
/// administrators do.
std::span<SystemCall const> calls_of_no_driver();

} // namespace umbrixlib::toolkit
