// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/failure.h"

#include <filesystem>
#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// A file to be worked on.
struct FoundFile {
    std::filesystem::path file; ///< As the user would call it: begins with what was given.
    std::filesystem::path tree; ///< Its folder, counted from where the tree begins that it was found in.
};

/// What is looked for.
struct Search {
    std::vector<std::string> places; ///< Files, folders, and patterns for either.
    /// Of the names of files. If it is empty or leaves the extension open, only what is called like a picture
    /// is taken from folders.
    std::string pattern;
    bool recurse = false;
    std::filesystem::path
        avoided; ///< A folder that is not walked unless it is one of the places; may be empty.
};

struct SearchResult {
    std::vector<FoundFile> files;  ///< Each once, by path.
    std::vector<Failure> failures; ///< Places that do not exist, folders that cannot be read.
};

/// Finds the files. In a folder, names that begin with a dot are left out unless the pattern begins so. A
/// linked folder is walked, too, but none twice.
SearchResult find_files(Search const& search);

} // namespace umbrixlib::toolkit
