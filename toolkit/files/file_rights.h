// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <sys/types.h>

namespace umbrixlib::toolkit {

/// The access rights of a file in the place of one with the rights @p old. Nobody is to get a right that the
/// old file did not give: without its owner or its group, the group has what both the group and all others
/// had, and so have all others. What runs, and what changes who runs it, is not kept.
mode_t rights_in_place_of(mode_t old, bool owner_is_kept, bool group_is_kept);

/// Gives the new file open at @p descriptor the owner, the group and the rights of @p target, as far as the
/// system lets it; those of any new file if there is none.
void take_rights(int descriptor, std::filesystem::path const& target);

} // namespace umbrixlib::toolkit
