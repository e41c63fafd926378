// SPDX-License-Identifier: MIT
#pragma once

#include "umbrix/umbrix_options.h"

#include <functional>
#include <string>

namespace umbrixlib::detail {

/// What the folder batches of the processor and the graphics processor share: all but how one file is
/// converted. Refers to the arguments of the call, which outlive it.
struct FolderBatch {
    /// Full names of one file's input and output.
    struct File {
        std::string input;
        std::string output;
    };

    std::string const& path;
    std::string const& search;
    umbrix_options const& options;
    std::string* current;
    std::string* status;
    int* progress;

    /// Walks the folder.
    ///
    /// @param descend Calls the batch itself for the path of a subfolder.
    /// @param convert Converts the file of that name: `begin`, then its pipeline.
    /// @return What the batch returns.
    bool run(std::function<void(std::string const& subfolder)> const& descend,
             std::function<void(std::string const& name)> const& convert) const;

    /// Tells the front end of the file @p name, and makes its names.
    File begin(std::string const& name) const;
};

} // namespace umbrixlib::detail
