// SPDX-License-Identifier: MIT
#include "toolkit/base/worker_channel.h"

#include <cstdlib>
#include <unistd.h>

namespace umbrixlib::toolkit {

namespace {

std::string line_of(nlohmann::json const& event)
{
    return event.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

void send(std::string const& line)
{
    for (std::size_t sent = 0; sent < line.size();) {
        ssize_t const step = write(kEventDescriptor, line.data() + sent, line.size() - sent);
        if (step <= 0) {
            _exit(EXIT_FAILURE); // nobody is listening any more
        }
        sent += static_cast<std::size_t>(step);
    }
}

} // namespace

void send_phase(Phase phase)
{
    send(line_of({{"phase", static_cast<int>(phase)}}));
}

void send_file(std::string const& file)
{
    send(line_of({{"file", file}}));
}

void send_progress(std::string_view stage, int permille)
{
    send(line_of({{"stage", stage}, {"permille", permille}}));
}

void send_note(Note const& note)
{
    send(line_of({{"note", note.text}, {"kind", static_cast<int>(note.kind)}, {"detail", note.detail}}));
}

void send_failure(Failure const& failure)
{
    send(failure_event(failure));
}

std::string failure_event(Failure const& failure)
{
    return line_of({{"failure",
                     {{"fault", static_cast<int>(failure.fault)},
                      {"subject", failure.subject},
                      {"what", failure.what()},
                      {"remedy", failure.remedy}}}});
}

void send_result(nlohmann::json const& result)
{
    send(line_of({{"result", result}}));
}

} // namespace umbrixlib::toolkit
