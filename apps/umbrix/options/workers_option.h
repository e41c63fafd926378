// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <cstddef>

namespace umbrix_cli {

/// --jobs: how many files are worked on at a time.
struct WorkersOption {
    double given = 0; ///< 0: not given.

    std::size_t count() const;
};

CLI::Option* declare_workers(CLI::App& command, WorkersOption& workers);

} // namespace umbrix_cli
