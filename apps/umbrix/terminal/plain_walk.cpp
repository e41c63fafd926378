// SPDX-License-Identifier: MIT
#include "terminal/plain_walk.h"

#include "terminal/advice.h"
#include "terminal/put_text.h"
#include "terminal/say.h"
#include "terminal/supervise.h"
#include "toolkit/workers/run_one.h"

#include <fmt/format.h>

namespace umbrix_cli {

namespace {

constexpr char const* kCaller = "umbrix batch"; // the one command with such a walk

class WalkDisplay : public Observer {
    void note(std::string const& file, Note const& note) override
    {
        say_note(kCaller, file + ": " + text_of(note));
    }
};

void say_that_it_is_stopping()
{
    put_text(stderr, fmt::format("{}: stopping when the file at work is finished; press Ctrl-C again to "
                                 "stop at once, which may leave half of it\n",
                                 kCaller));
}

} // namespace

void run_plain_walk(FolderJob const& job, Interrupts const& interrupts)
{
    note_missing_sandbox(kCaller);
    WalkDisplay display;
    if (!run_walk(job, display, interrupts, say_that_it_is_stopping)) {
        throw Stopped{"the walk was stopped; the same command begins it anew"};
    }
    say("{}: the walk ran to its end; the library does not tell what became of each file", job.folder);
}

} // namespace umbrix_cli
