// SPDX-License-Identifier: MIT
#pragma once

#include "files/folder_walk_internal.h"
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

    /// Converts the file @p name in @p folder: `begin`, then its pipeline.
    using Convert = std::function<void(std::string const& folder, std::string const& name)>;

    std::string const& search;
    umbrix_options const& options;
    std::string* current;
    std::string* status;
    int* progress;

    /// Walks @p folder and, if the options say so, its subfolders.
    ///
    /// @param above The folders above this one in the same walk; null for the first.
    /// @return What the batch returns.
    bool run(std::string const& folder, Convert const& convert, FolderPath const* above = nullptr) const;

    /// Tells the front end of the file @p name in @p folder, and makes its names.
    File begin(std::string const& folder, std::string const& name) const;
};

} // namespace umbrixlib::detail
