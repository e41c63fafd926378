// SPDX-License-Identifier: MIT
#include "terminal/supervise.h"

#include "terminal/advice.h"
#include "terminal/put_text.h"
#include "terminal/say.h"

#include <cerrno>
#include <cstring>
#include <iterator>
#include <poll.h>

namespace umbrix_cli {

namespace {

Hearing shown_by(ProgressDisplay& display, Supervision const& supervision)
{
    Hearing hearing;
    hearing.progress = [&display](std::string const& stage, int permille) { display.show(stage, permille); };
    hearing.note = [&](std::string const& file, Note const& note) {
        if (supervision.verbose || !note.detail) {
            display.clear();
            say_note(supervision.command, file + ": " + text_of(note));
        }
    };
    return hearing;
}

} // namespace

nlohmann::json supervise(Job const& job, Supervision const& supervision)
{
    ProgressDisplay display(supervision.progress);
    Conversation conversation(job, supervision.briefing, shown_by(display, supervision));
    for (bool open = true; open;) {
        pollfd records[Conversation::kDescriptors + 1] = {};
        conversation.fill(records);
        records[Conversation::kDescriptors] = {supervision.interrupts.descriptor(), POLLIN, 0};
        if (poll(records, std::size(records), conversation.patience()) < 0 && errno != EINTR) {
            throw Failure(Fault::kWorkerUnheard, "umbrix",
                          std::string("no word from its worker: ") + std::strerror(errno));
        }
        open = conversation.listen(records);
        supervision.interrupts.check();
    }
    display.clear();
    if (supervision.verbose) {
        put_text(stderr, conversation.chatter());
    }
    return conversation.finish();
}

} // namespace umbrix_cli
