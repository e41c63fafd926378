// SPDX-License-Identifier: MIT
#include "interrupts/interruptible_output.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace umbrix_cli {

namespace {

constexpr int kGraceMilliseconds = 200; ///< For whoever still reads after an interrupt.

} // namespace

InterruptibleOutput::InterruptibleOutput(Interrupts const& interrupts)
    : out_{&interrupts, STDOUT_FILENO, stdout}, err_{&interrupts, STDERR_FILENO, stderr}
{
    if (std::FILE* const stream = open(out_)) {
        std::setvbuf(stream, nullptr, isatty(STDOUT_FILENO) != 0 ? _IOLBF : _IOFBF, BUFSIZ);
        stdout = stream;
    }
    if (std::FILE* const stream = open(err_)) {
        std::setvbuf(stream, nullptr, _IONBF, 0);
        stderr = stream;
    }
}

InterruptibleOutput::~InterruptibleOutput()
{
    if (stdout != out_.ordinary) {
        std::fclose(std::exchange(stdout, out_.ordinary));
    }
    if (stderr != err_.ordinary) {
        std::fclose(std::exchange(stderr, err_.ordinary));
    }
}

std::FILE* InterruptibleOutput::open(Stream& stream)
{
    std::fflush(stream.ordinary);
    cookie_io_functions_t functions{};
    functions.write = write;
    return fopencookie(&stream, "w", functions);
}

/// For the C library: all of @p size, or 0 after an error.
ssize_t InterruptibleOutput::write(void* stream, char const* bytes, std::size_t size)
{
    Stream& self = *static_cast<Stream*>(stream);
    for (std::size_t sent = 0; sent < size && !self.dropped;) {
        bool const asked = self.interrupts->asked();
        pollfd waiting[] = {{self.descriptor, POLLOUT, 0},
                            {asked ? -1 : self.interrupts->descriptor(), POLLIN, 0}};
        poll(waiting, 2, asked ? kGraceMilliseconds : -1);
        if (waiting[0].revents != 0) {
            // A pipe that is ready takes so much at once.
            ssize_t const step =
                ::write(self.descriptor, bytes + sent, std::min<std::size_t>(size - sent, PIPE_BUF));
            if (step < 0 && errno != EINTR && errno != EAGAIN) {
                return 0;
            }
            sent += static_cast<std::size_t>(std::max<ssize_t>(step, 0));
        } else {
            self.dropped = asked;
        }
    }
    return static_cast<ssize_t>(size);
}

} // namespace umbrix_cli
