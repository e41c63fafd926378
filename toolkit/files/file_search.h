// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/failure.h"

#include <filesystem>
#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// A file to be worked on.
struct FoundFile {
    std::filesystem::path file; ///< The place that was given, or a path that begins with it.
    std::filesystem::path tree; ///< Its folder, relative to the root of the walked tree.
    /// Last parts of the places that are the file or describe its name, in the places' letters; empty if it
    /// was only found in folders.
    std::vector<std::string> asked_for{};
};

/// What is looked for.
struct Search {
    std::vector<std::string> places; ///< Files, folders, and patterns for either.
    /// Patterns of the names of files; one that describes it is enough. If there are none, or if it leaves
    /// the extension open, folders give only files with the extension of a picture.
    std::vector<std::string> include;
    std::vector<std::string> exclude; ///< Patterns of the names of files that are not wanted.
    bool recurse = false;
    /// A folder that is not walked unless it is one of the places; may be empty.
    std::filesystem::path avoided;
};

struct SearchResult {
    std::vector<FoundFile> files;  ///< Each once, by path.
    std::vector<Failure> failures; ///< Places that do not exist, folders that cannot be read.
};

/// Finds the files. In a folder, names that begin with a dot are left out unless the pattern begins so. A
/// linked folder is walked, too, but none twice.
SearchResult find_files(Search const& search);

} // namespace umbrixlib::toolkit
