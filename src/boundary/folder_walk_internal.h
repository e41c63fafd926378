// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

namespace umbrixlib::detail {

/// What a folder batch does on its way; the walk itself is the same for all.
struct FolderVisitor {
    /// Whether to break off. Asked at the start, before each entry but the first, and behind the subfolders.
    std::function<bool()> stopped = [] { return false; };
    /// Walks the subfolder @p name, whose path is @p path, too.
    std::function<void(std::string const& name, std::string const& path)> subfolder;
    /// Works on the file @p name of the folder.
    std::function<void(std::string const& name)> file;
};

/// Walks @p folder: with @p recurse its subfolders first, then the files that match @p pattern, both in the
/// order of the platform. What comes into being during an enumeration is not in it.
///
/// @return False if a change of the directory failed or the visitor broke off.
///
/// Contract: the current directory of the process is left where it is, the last folder entered; the one
/// before the call is expected. With @p recurse a relative @p folder is therefore looked for inside itself,
/// and its files and those below are left out. Test: FolderWalk.TheDirectoryIsLeftAtTheLastFolderEntered,
/// FolderWalk.ARelativeFolderIsNotFoundAgainAfterADescent
bool walk_folder(std::string const& folder, std::string const& pattern, bool recurse,
                 FolderVisitor const& visitor);

/// @p folder, the separator and @p name.
std::string joined(std::string const& folder, std::string const& name);
/// @p name of a subfolder with the separator behind it, as a front end polls it.
std::string polled_folder(std::string const& name);

} // namespace umbrixlib::detail
