// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace umbrixlib::toolkit {

/// A wish to stop, as a loop that polls descriptors sees it. A front end brings its own: a terminal its
/// signals, a window its button.
class Stop {
public:
    Stop() = default;
    virtual ~Stop() = default;
    Stop(Stop const&) = delete;
    Stop& operator=(Stop const&) = delete;

    /// Readable as soon as there is a wish that nobody has taken; for poll. -1: there will never be one.
    virtual int descriptor() const = 0;

    /// Whether there is a wish, which then counts as seen: the next call waits for another. Several that came
    /// in between count as one.
    virtual bool take() const = 0;

    /// Throws Stopped if there is a wish; it does not count as seen.
    void check() const;
};

/// Thrown where a wish to stop is noticed.
struct Stopped {
    std::string state = "nothing was written"; ///< What there is now, for the user.
};

/// For work that nobody stops.
class NeverStop : public Stop {
public:
    int descriptor() const override { return -1; }
    bool take() const override { return false; }
};

/// A wish to stop that any thread may utter, or a signal handler.
class StopSource : public Stop {
public:
    StopSource();
    ~StopSource() override;

    void request();

    int descriptor() const override { return descriptor_; }
    bool take() const override;

private:
    int descriptor_;
};

} // namespace umbrixlib::toolkit
