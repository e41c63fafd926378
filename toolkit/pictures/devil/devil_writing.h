// SPDX-License-Identifier: MIT
#pragma once

namespace umbrixlib::toolkit {

/// While it lives, DevIL writes its files through it: DevIL goes on when a part of a file cannot be written,
/// and tells nobody. One at a time, after start_devil().
class WatchedWriting {
public:
    WatchedWriting();
    ~WatchedWriting();
    WatchedWriting(WatchedWriting const&) = delete;
    WatchedWriting& operator=(WatchedWriting const&) = delete;

    /// Whether all that DevIL wrote since, up to the closing of the file, went well.
    bool went_well() const;
};

} // namespace umbrixlib::toolkit
