// SPDX-License-Identifier: MIT
#include "terminal/supervise.h"

#include "terminal/advice.h"
#include "terminal/put_text.h"
#include "terminal/say.h"

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

} // namespace umbrix_cli
