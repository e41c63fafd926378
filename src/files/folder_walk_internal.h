// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/platform.h"

#include <functional>
#include <optional>
#include <string>

namespace umbrixlib::detail {

/// A folder that a walk is in, and those above it on the way from where the walk began.
struct FolderPath {
    std::optional<platform::FolderIdentity> folder;
    FolderPath const* above = nullptr;

    /// Whether @p other is one of them.
    bool holds(std::optional<platform::FolderIdentity> const& other) const;
};

/// What a folder batch does on its way; the walk itself is the same for all.
struct FolderVisitor {
    /// Whether to break off. Asked at the start, before each entry but the first, and behind the subfolders.
    std::function<bool()> stopped = [] { return false; };
    /// Walks the subfolder @p name, whose path is @p path, too, and hands that walk the folders @p above it.
    std::function<void(std::string const& name, std::string const& path, FolderPath const& above)> subfolder;
    /// Works on the file @p name of the folder.
    std::function<void(std::string const& name)> file;
};

/// Walks @p folder: with @p recurse its subfolders first, then the files that match @p pattern, both in the
/// order of the platform. What comes into being during an enumeration is not in it. A subfolder that the walk
/// is in already, by a link that leads back up, is not entered.
///
/// @param above The folders that this one is a subfolder of in the same walk; null for the first.
/// @return False if a change of the directory failed or the visitor broke off.
///
/// Contract: the current directory of the process is left where it is, the last folder entered; the one
/// before the call is expected. With @p recurse a relative @p folder is therefore looked for inside itself,
/// and its files and those below are left out. Test: FolderWalk.TheDirectoryIsLeftAtTheLastFolderEntered,
/// FolderWalk.ARelativeFolderIsNotFoundAgainAfterADescent
bool walk_folder(std::string const& folder, std::string const& pattern, bool recurse,
                 FolderVisitor const& visitor, FolderPath const* above = nullptr);

/// @p folder, the separator and @p name.
std::string joined(std::string const& folder, std::string const& name);
/// @p name of a subfolder with the separator behind it, as a front end polls it.
std::string polled_folder(std::string const& name);

} // namespace umbrixlib::detail
