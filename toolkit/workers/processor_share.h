// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <sched.h>
#include <vector>

namespace umbrixlib::toolkit {

using ProcessorSet = cpu_set_t;

/// The processors that this process may use, shared out in @p parts equal parts as far as that goes. Where
/// there are fewer processors than parts, each part is one processor, used by several parts. Empty if the
/// system does not tell them.
std::vector<ProcessorSet> share_processors(std::size_t parts);

/// As many of the processors that the calling thread may use as @p threads says, which is the text of a
/// variable of OpenMP or null. Nothing if it says no number, or no smaller one than there are. Which they are
/// depends on the process: those that run beside each other should not all take the same.
std::optional<ProcessorSet> processors_for_threads(char const* threads);

/// How many processors the calling thread may use, at least 1.
std::size_t processor_count();

/// Workers at a time, if the user does not say: as many as there are processors, but no more than have 2 GiB
/// of memory each, which a worker on a picture of 4096 x 4096 stays below.
std::size_t default_workers();

/// While it lives, what the calling thread starts runs on the given processors only. A program that is
/// started so sees no others, also when it sizes its teams of threads.
class ProcessorScope {
public:
    /// @param share Null: nothing changes.
    explicit ProcessorScope(ProcessorSet const* share);
    ~ProcessorScope();
    ProcessorScope(ProcessorScope const&) = delete;
    ProcessorScope& operator=(ProcessorScope const&) = delete;

private:
    bool changed_ = false;
    ProcessorSet before_{};
};

} // namespace umbrixlib::toolkit
