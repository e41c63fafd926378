// SPDX-License-Identifier: MIT
#include "toolkit/base/stop.h"

#include <cerrno>
#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace umbrixlib::toolkit {

void Stop::check() const
{
    pollfd waiting{descriptor(), POLLIN, 0};
    if (poll(&waiting, 1, 0) > 0) {
        throw Stopped{};
    }
}

StopSource::StopSource() : descriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (descriptor_ < 0) {
        throw std::system_error(errno, std::generic_category(), "no descriptor for a wish to stop");
    }
}

StopSource::~StopSource()
{
    close(descriptor_);
}

void StopSource::request()
{
    static_cast<void>(!eventfd_write(descriptor_, 1));
}

bool StopSource::take() const
{
    eventfd_t wishes = 0;
    return eventfd_read(descriptor_, &wishes) == 0;
}

} // namespace umbrixlib::toolkit
