// SPDX-License-Identifier: MIT
#include "terminal/interrupts.h"

#include <csignal>
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
