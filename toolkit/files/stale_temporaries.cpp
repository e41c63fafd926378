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

/// @p flags How it is opened: some file systems lock only what is open for writing, and folders never are.
/// @p type  What it has to be.
void remove_if_stale(fs::path const& name, int flags, mode_t type)
{
    int const descriptor = open(name.c_str(), flags | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        return;
    }
    TemporaryLock const lock(descriptor);
    struct stat status = {};
    bool const ours =
        fstat(descriptor, &status) == 0 && (status.st_mode & S_IFMT) == type && status.st_uid == geteuid();
    if (ours && lock.hold_if_free(name)) {
        std::error_code ignored;
        fs::remove_all(name, ignored);
    }
}

} // namespace

void remove_stale_outputs(fs::path const& folder)
{
    for (fs::path const& name : entries_with_prefix(folder, output_prefix())) {
        remove_if_stale(name, O_RDWR, S_IFREG);
    }
}

void remove_leftovers_beside(fs::path const& target)
{
    remove_stale_outputs(output_folder(target));
    remove_stale_scratch();
}

void remove_stale_scratch()
{
    std::error_code error;
    fs::path const parent = fs::temp_directory_path(error);
    if (!error) {
        for (fs::path const& name : entries_with_prefix(parent, scratch_prefix())) {
            remove_if_stale(name, O_RDONLY | O_DIRECTORY, S_IFDIR);
        }
    }
}

} // namespace umbrixlib::toolkit
