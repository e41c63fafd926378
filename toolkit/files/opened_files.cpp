// SPDX-License-Identifier: MIT
#include "toolkit/files/opened_files.h"

#include <cerrno>
#include <fcntl.h>
#include <map>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

struct OpenedFile {
    int descriptor = -1;
    int error = 0; ///< Why there is none.
};

/// Of this process, until it ends or closes them.
std::map<std::string, OpenedFile>& opened_files()
{
    static std::map<std::string, OpenedFile> files;
    return files;
}

int open_now(std::string const& file, OpenFor purpose, int flags = 0)
{
    constexpr mode_t kForAll = 0666; // less the mask
    return purpose == OpenFor::kReading
               ? open(file.c_str(), O_RDONLY | O_CLOEXEC | flags)
               : open(file.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | flags, kForAll);
}

bool is_plain(int descriptor)
{
    struct stat status = {};
    return status_of(descriptor, status) && S_ISREG(status.st_mode);
}

/// Whether an open file is an empty one of one name, as a temporary file is. Somebody else may have put
/// another name of a file of the user in its place.
bool is_fresh(int descriptor)
{
    struct stat status = {};
    return status_of(descriptor, status) && S_ISREG(status.st_mode) && status.st_nlink == 1 &&
           status.st_size == 0;
}

/// Another descriptor of an open file, which goes to its first byte.
int from_the_start(int descriptor, OpenFor purpose)
{
    if (purpose == OpenFor::kWriting && ftruncate(descriptor, 0) != 0) {
        return -1;
    }
    return lseek(descriptor, 0, SEEK_SET) == 0 ? fcntl(descriptor, F_DUPFD_CLOEXEC, 0) : -1;
}

} // namespace

bool open_ahead(std::filesystem::path const& file, OpenFor purpose)
{
    auto const [place, is_new] = opened_files().try_emplace(file.string());
    OpenedFile& opened = place->second;
    if (is_new) {
        opened.descriptor = open_now(file.string(), purpose);
        opened.error = opened.descriptor < 0 ? errno : 0;
        if (opened.descriptor >= 0 && purpose == OpenFor::kWriting && !is_fresh(opened.descriptor)) {
            close(std::exchange(opened.descriptor, -1));
            opened.error = EEXIST;
        }
    }
    return opened.error != EMFILE && opened.error != ENFILE;
}

int open_for_another(std::filesystem::path const& file, OpenFor purpose)
{
    // Without O_NONBLOCK a pipe that has taken the place of a file is waited for.
    int const descriptor = open_now(file.string(), purpose, O_NONBLOCK);
    bool const good = purpose == OpenFor::kReading ? is_plain(descriptor) : is_fresh(descriptor);
    if (descriptor >= 0 && !good) {
        close(descriptor);
        return -1;
    }
    return descriptor;
}

void take_opened(std::filesystem::path const& file, int descriptor)
{
    OpenedFile& opened = opened_files()[file.string()];
    if (opened.descriptor >= 0) {
        close(opened.descriptor);
    }
    opened = {descriptor, 0};
}

void close_opened_files()
{
    for (auto const& [name, opened] : opened_files()) {
        if (opened.descriptor >= 0) {
            close(opened.descriptor);
        }
    }
    opened_files().clear();
}

int open_file(std::filesystem::path const& file, OpenFor purpose)
{
    auto const place = opened_files().find(file.string());
    if (place == opened_files().end()) {
        int const descriptor = open_now(file.string(), purpose);
        if (descriptor >= 0 && purpose == OpenFor::kWriting && ftruncate(descriptor, 0) != 0) {
            close(descriptor);
            return -1;
        }
        return descriptor;
    }
    if (place->second.descriptor < 0) {
        errno = place->second.error;
        return -1;
    }
    return from_the_start(place->second.descriptor, purpose);
}

bool status_of(int descriptor, struct stat& status)
{
#if defined(__LP64__) && defined(SYS_fstat)
    // Some C libraries use the call with a name instead, which a worker may not make.
    return syscall(SYS_fstat, descriptor, &status) == 0;
#else
    return fstat(descriptor, &status) == 0;
#endif
}

} // namespace umbrixlib::toolkit
