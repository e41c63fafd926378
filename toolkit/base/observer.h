// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/note.h"
#include "toolkit/base/phase.h"

#include <string>
#include <string_view>

namespace umbrixlib::toolkit {

/// What a front end is told while a job is done. Each function does nothing unless overridden. The calls come
/// from the thread that does the job, or that waits for the worker which does it.
class Observer {
public:
    Observer() = default;
    virtual ~Observer() = default;
    Observer(Observer const&) = delete;
    Observer& operator=(Observer const&) = delete;

    /// From now on the job is in @p phase and works on @p file, as messages call it.
    virtual void begin(Phase /*phase*/, std::string const& /*file*/) {}

    /// How far the work itself is, in words for a user.
    virtual void stage(std::string_view /*name*/, int /*permille*/) {}

    /// Something that the user ought to know about @p file.
    virtual void note(std::string const& /*file*/, Note const& /*note*/) {}

    /// The last that libraries printed, fit for a terminal; once, as the job ends, and only by a worker.
    virtual void printed(std::string const& /*lines*/) {}

    /// Whether the front end wants the job to end early. Jobs that can, look at it now and then.
    virtual bool stopping() const { return false; }
};

} // namespace umbrixlib::toolkit
