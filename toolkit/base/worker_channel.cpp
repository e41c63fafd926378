// SPDX-License-Identifier: MIT
#include "toolkit/base/worker_channel.h"

#include <unistd.h>

namespace umbrixlib::toolkit {

namespace {

void send(nlohmann::json const& event)
{
    std::string const line = event.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
    for (std::size_t sent = 0; sent < line.size();) {
        ssize_t const step = write(kEventDescriptor, line.data() + sent, line.size() - sent);
        if (step <= 0) {
            _exit(kInputFailed); // nobody is listening any more
        }
        sent += static_cast<std::size_t>(step);
    }
}

} // namespace

void send_phase(Phase phase)
{
    send({{"phase", static_cast<int>(phase)}});
}

void send_file(std::string const& file)
{
    send({{"file", file}});
}

void send_progress(std::string_view stage, int permille)
{
    send({{"stage", stage}, {"permille", permille}});
}

void send_note(std::string const& text, bool only_if_verbose)
{
    send({{"note", text}, {"detail", only_if_verbose}});
}

void send_failure(Failure const& failure)
{
    send({{"failure",
           {{"subject", failure.subject},
            {"what", failure.what()},
            {"advice", failure.advice},
            {"code", static_cast<int>(failure.code)}}}});
}

void send_result(nlohmann::json const& result)
{
    send({{"result", result}});
}

} // namespace umbrixlib::toolkit
