// SPDX-License-Identifier: MIT
#include "toolkit/lists/list_lock.h"

#include "toolkit/files/temporary.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

namespace umbrixlib::toolkit {

namespace {

constexpr auto kInterval = std::chrono::milliseconds(20);

bool is_held_by_another(int descriptor)
{
    return descriptor >= 0 && flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

} // namespace

ListLock::ListLock(std::filesystem::path const& list, Stop const& stop, std::function<void()> const& waits)
    : descriptor_(open(output_folder(list).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    for (bool told = false; is_held_by_another(descriptor_); told = true) {
        if (!told) {
            waits();
        }
        stop.check();
        std::this_thread::sleep_for(kInterval);
    }
}

ListLock::~ListLock()
{
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}

} // namespace umbrixlib::toolkit
