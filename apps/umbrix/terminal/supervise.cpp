// SPDX-License-Identifier: MIT
#include "terminal/supervise.h"

#include "terminal/advice.h"
#include "terminal/put_text.h"
#include "terminal/say.h"
#include "toolkit/workers/sandbox/rights.h"

namespace umbrix_cli {

void JobDisplay::begin(Phase phase, std::string const& /*file*/)
{
    if (phase == Phase::kWriting) {
        progress_.show("writing", 0);
    }
}

void JobDisplay::stage(std::string_view name, int permille)
{
    progress_.show(std::string(name), permille);
}

void JobDisplay::note(std::string const& file, Note const& note)
{
    if (supervision_.verbose || !note.detail) {
        progress_.clear();
        say_note(supervision_.command, file + ": " + text_of(note));
    }
}

void JobDisplay::printed(std::string const& lines)
{
    if (supervision_.verbose) {
        progress_.clear();
        put_text(stderr, lines);
    }
}

void note_missing_sandbox(std::string const& command)
{
    if (all_rights_are_kept()) {
        say_note(command, "--no-sandbox: the process that reads pictures keeps all rights of yours");
    } else if (!can_take_rights()) {
        say_note(command,
                 "this system has no filter of system calls (seccomp): the process that reads pictures "
                 "keeps all rights of yours");
    }
}

} // namespace umbrix_cli
