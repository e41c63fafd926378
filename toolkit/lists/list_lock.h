// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/stop.h"

#include <filesystem>
#include <functional>

namespace umbrixlib::toolkit {

/// Held by a command from before it reads a work list until after it has replaced it, so that of two commands
/// at once none loses what the other one changed. It is a lock on the folder: the list itself is replaced, or
/// not there yet, and a file for the lock would stay behind. On a file system that locks no folders, and for
/// a folder that cannot be read, it is none.
class ListLock {
public:
    /// Waits while another process holds it. Stopped if the user would not wait.
    /// @param waits Called once if it has to wait.
    ListLock(std::filesystem::path const& list, Stop const& stop, std::function<void()> const& waits);
    ~ListLock();
    ListLock(ListLock const&) = delete;
    ListLock& operator=(ListLock const&) = delete;

private:
    int descriptor_;
};

} // namespace umbrixlib::toolkit
