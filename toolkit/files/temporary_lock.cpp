// SPDX-License-Identifier: MIT
#include "toolkit/files/temporary_lock.h"

#include <cerrno>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace umbrixlib::toolkit {

TemporaryLock::~TemporaryLock()
{
    close(descriptor_);
}

bool TemporaryLock::hold(std::filesystem::path const& name) const
{
    int result = 0;
    while ((result = flock(descriptor_, LOCK_EX)) != 0 && errno == EINTR) {
    }
    return result != 0 || is_on(name);
}

bool TemporaryLock::hold_if_free(std::filesystem::path const& name) const
{
    return flock(descriptor_, LOCK_EX | LOCK_NB) == 0 && is_on(name);
}

bool TemporaryLock::is_on(std::filesystem::path const& name) const
{
    struct stat open = {};
    struct stat named = {};
    return fstat(descriptor_, &open) == 0 && lstat(name.c_str(), &named) == 0 &&
           open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

} // namespace umbrixlib::toolkit
