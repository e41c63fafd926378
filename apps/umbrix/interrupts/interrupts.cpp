// SPDX-License-Identifier: MIT
#include "interrupts/interrupts.h"

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

bool Interrupts::take() const
{
    bool arrived = false;
    signalfd_siginfo told = {};
    while (read(descriptor_, &told, sizeof told) > 0) {
        arrived = true;
        signal_ = static_cast<int>(told.ssi_signo);
    }
    taken_ = taken_ || arrived;
    return arrived;
}

bool Interrupts::asked() const
{
    pollfd waiting{descriptor_, POLLIN, 0};
    return taken_ || poll(&waiting, 1, 0) > 0;
}

} // namespace umbrix_cli
