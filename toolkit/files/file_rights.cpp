// SPDX-License-Identifier: MIT
#include "toolkit/files/file_rights.h"

#include <sys/stat.h>
#include <unistd.h>

namespace umbrixlib::toolkit {

namespace {

constexpr mode_t kReadAndWrite = 0666;
constexpr unsigned kGroupShift = 3;

bool set_owner(int descriptor, uid_t owner, gid_t group)
{
    return fchown(descriptor, owner, group) == 0;
}

} // namespace

mode_t rights_in_place_of(mode_t old, bool owner_is_kept, bool group_is_kept)
{
    mode_t const kept = old & kReadAndWrite;
    if (owner_is_kept && group_is_kept) {
        return kept;
    }
    mode_t const both = kept & (kept >> kGroupShift) & 07U;
    return (kept & 0600U) | both << kGroupShift | both;
}

void take_rights(int descriptor, std::filesystem::path const& target)
{
    struct stat old = {};
    if (stat(target.c_str(), &old) != 0) {
        mode_t const mask = umask(0);
        umask(mask);
        fchmod(descriptor, kReadAndWrite & ~mask);
        return;
    }
    struct stat made = {};
    fstat(descriptor, &made);
    auto const as_it_is = static_cast<uid_t>(-1);
    bool const group = made.st_gid == old.st_gid || set_owner(descriptor, as_it_is, old.st_gid);
    bool const owner = made.st_uid == old.st_uid || set_owner(descriptor, old.st_uid, as_it_is);
    fchmod(descriptor, rights_in_place_of(old.st_mode, owner, group));
}

} // namespace umbrixlib::toolkit
