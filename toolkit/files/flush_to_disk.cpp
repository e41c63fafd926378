// SPDX-License-Identifier: MIT
#include "toolkit/files/flush_to_disk.h"

#include <fcntl.h>
#include <unistd.h>

namespace umbrixlib::toolkit {

bool flush_to_disk(std::filesystem::path const& file)
{
    int const descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    bool const flushed = descriptor >= 0 && fsync(descriptor) == 0;
    if (descriptor >= 0) {
        close(descriptor);
    }
    return flushed;
}

} // namespace umbrixlib::toolkit
