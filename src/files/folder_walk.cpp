// SPDX-License-Identifier: MIT
#include "files/folder_walk_internal.h"

namespace umbrixlib::detail {

namespace {

using platform::FolderEntry;

bool is_subfolder(FolderEntry const& entry)
{
    return entry.is_folder && entry.name != "." && entry.name != "..";
}

/// Hands each entry of the current directory to @p visit. False if the visitor broke off.
template <typename Visit>
bool for_each_entry(char const* pattern, FolderVisitor const& visitor, Visit visit)
{
    bool first = true;
    for (FolderEntry const& entry : platform::list_current_directory(pattern)) {
        if (!first && visitor.stopped()) {
            return false;
        }
        first = false;
        visit(entry);
    }
    return true;
}

bool walk_subfolders(std::string const& folder, FolderVisitor const& visitor, FolderPath const* above)
{
    if (!platform::change_directory(folder.c_str())) {
        return false;
    }
    FolderPath const here{platform::identify_folder("."), above};
    bool const finished = for_each_entry("*.*", visitor, [&](FolderEntry const& entry) {
        if (is_subfolder(entry) && !here.holds(entry.identity)) {
            visitor.subfolder(entry.name, joined(folder, entry.name), here);
        }
    });
    return finished && !visitor.stopped();
}

} // namespace

bool FolderPath::holds(std::optional<platform::FolderIdentity> const& other) const
{
    return other && (folder == other || (above != nullptr && above->holds(other)));
}

bool walk_folder(std::string const& folder, std::string const& pattern, bool recurse,
                 FolderVisitor const& visitor, FolderPath const* above)
{
    if (visitor.stopped() || (recurse && !walk_subfolders(folder, visitor, above))) {
        return false;
    }
    // Once more behind a descent, which has moved the directory.
    return platform::change_directory(folder.c_str()) &&
           for_each_entry(pattern.c_str(), visitor, [&](FolderEntry const& entry) {
               if (!entry.is_folder) {
                   visitor.file(entry.name);
               }
           });
}

std::string joined(std::string const& folder, std::string const& name)
{
    return folder + platform::kSeparator + name;
}

std::string polled_folder(std::string const& name)
{
    return name + platform::kSeparator;
}

} // namespace umbrixlib::detail
