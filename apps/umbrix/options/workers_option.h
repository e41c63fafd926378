// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/workers/service.h"
#include "toolkit_names.h"

#include <CLI/App.hpp>
#include <cstddef>

namespace umbrix_cli {

/// --jobs and --isolate: how many files are worked on at a time, and by whom.
struct WorkersOption {
    double given = 0; ///< 0: not given.
    bool isolate = false;

    std::size_t count() const;
    Service service() const { return isolate ? Service::kOneJob : Service::kManyJobs; }
};

void declare_workers(CLI::App& command, WorkersOption& workers);

} // namespace umbrix_cli
