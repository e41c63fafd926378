// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace umbrixlib::toolkit {

/// A lock that marks a temporary file as in use. The system releases it when its process ends,
/// however it ends. So a later run removes what a killed one left, and nothing of a run that still works.
class TemporaryLock {
public:
    /// Takes over an open descriptor.
    explicit TemporaryLock(int descriptor) : descriptor_(descriptor) {}
    ~TemporaryLock();
    TemporaryLock(TemporaryLock const&) = delete;
    TemporaryLock& operator=(TemporaryLock const&) = delete;

    /// Locks @p name, which the caller has just made. False if another run took it for a leftover and removed
    /// it first: make it anew then. On a file system without locks it stays unlocked.
    bool hold(std::filesystem::path const& name) const;

    /// For who found @p name: true if nobody uses it, and nobody can begin to while this object lives. Never
    /// on a file system without locks.
    bool hold_if_free(std::filesystem::path const& name) const;

    /// Whether @p name still is the locked file, and not one that somebody put in its place.
    bool is_on(std::filesystem::path const& name) const;

    int descriptor() const { return descriptor_; }

private:
    int descriptor_;
};

} // namespace umbrixlib::toolkit
