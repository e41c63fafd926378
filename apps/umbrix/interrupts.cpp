// SPDX-License-Identifier: MIT
#include "interrupts.h"

#include "failure.h"

#include <csignal>
#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace umbrix_cli {

Interrupts::Interrupts()
{
    sigset_t watched;
    sigemptyset(&watched);
    for (int const signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction current = {};
        sigaction(signal, nullptr, &current);
        if (current.sa_handler != SIG_IGN) {
            sigaddset(&watched, signal);
        }
    }
    sigprocmask(SIG_BLOCK, &watched, nullptr);
    descriptor_ = signalfd(-1, &watched, SFD_CLOEXEC | SFD_NONBLOCK);
}

Interrupts::~Interrupts()
{
    close(descriptor_);
}

void Interrupts::check() const
{
    pollfd waiting{descriptor_, POLLIN, 0};
    if (poll(&waiting, 1, 0) > 0) {
        throw Interrupted{};
    }
}

bool Interrupts::take() const
{
    bool arrived = false;
    signalfd_siginfo ignored = {};
    while (read(descriptor_, &ignored, sizeof ignored) > 0) {
        arrived = true;
    }
    return arrived;
}

} // namespace umbrix_cli
