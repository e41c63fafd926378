// SPDX-License-Identifier: MIT
#include "toolkit/files/stale_temporaries.h"

#include "toolkit/files/temporary.h"

#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace umbrixlib::toolkit {

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> entries_with_prefix(fs::path const& folder, std::string const& prefix)
{
    std::vector<fs::path> found;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        if (entry->path().filename().string().starts_with(prefix)) {
            found.push_back(entry->path());
        }
    }
    return found;
}

void remove_if_stale(fs::path const& name)
{
    // Some file systems lock only what is open for writing.
    int const descriptor = open(name.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        return;
    }
    TemporaryLock const lock(descriptor);
    struct stat status = {};
    bool const ours =
        fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid();
    if (ours && lock.hold_if_free(name)) {
        std::error_code ignored;
        fs::remove(name, ignored);
    }
}

} // namespace

void remove_stale_outputs(fs::path const& folder)
{
    for (fs::path const& name : entries_with_prefix(folder, output_prefix())) {
        remove_if_stale(name);
    }
}

void remove_leftovers_beside(fs::path const& target)
{
    remove_stale_outputs(output_folder(target));
}

} // namespace umbrixlib::toolkit
