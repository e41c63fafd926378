// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace umbrixlib::toolkit {

/// The sign that a temporary file or folder is in use: a lock on it, which the system takes away when the
/// process that holds it ends, however it ends. A later run can so tell what was left by one that was killed,
/// and never takes anything away from one that is at work.
class TemporaryLock {
public:
    /// Takes over an open descriptor.
    explicit TemporaryLock(int descriptor) : descriptor_(descriptor) {}
    ~TemporaryLock();
    TemporaryLock(TemporaryLock const&) = delete;
    TemporaryLock& operator=(TemporaryLock const&) = delete;

    /// For who has just made @p name. False if it was taken for a leftover and removed before it was locked:
    /// then it is to be made anew. On a file system without locks it stays unlocked.
    bool hold(std::filesystem::path const& name) const;

    /// For who found @p name: true if nobody uses it, and nobody can begin to while this object lives. Never
    /// on a file system without locks.
    bool hold_if_free(std::filesystem::path const& name) const;

private:
    bool is_still(std::filesystem::path const& name) const;

    int descriptor_;
};

} // namespace umbrixlib::toolkit
