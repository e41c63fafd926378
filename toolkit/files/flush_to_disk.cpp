// SPDX-License-Identifier: MIT
#include "toolkit/files/flush_to_disk.h"

#include "toolkit/files/opened_files.h"

#include <unistd.h>

namespace umbrixlib::toolkit {

bool flush_to_disk(std::filesystem::path const& file)
{
    int const descriptor = open_file(file, OpenFor::kReading);
    bool const flushed = descriptor >= 0 && fsync(descriptor) == 0;
    if (descriptor >= 0) {
        close(descriptor);
    }
    return flushed;
}

} // namespace umbrixlib::toolkit
