// SPDX-License-Identifier: MIT
#include "toolkit/workers/sandbox/rights.h"

#include "toolkit/base/overloaded.h"

#include <atomic>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace umbrixlib::toolkit {

namespace {

std::atomic<bool> kept = false;

} // namespace

Rights rights_of(Job const& job)
{
    auto const by_device = [](Graphics const& graphics, Rights otherwise) {
        return graphics.device ? Rights::kGraphics : otherwise;
    };
    return std::visit(
        Overloaded{
            [](auto const&) { return Rights::kDecoding; },
            [&](MapJob const& map) { return by_device(map.graphics, Rights::kDecoding); },
            [&](StackJob const& stack) { return by_device(stack.graphics, Rights::kDecoding); },
            [&](ListJob const& list) { return by_device(list.graphics, Rights::kDecoding); },
            [](DevicesJob const&) { return Rights::kGraphics; },
            [&](FolderJob const& folder) { return by_device(folder.graphics, Rights::kFolder); },
        },
        job);
}

void keep_all_rights()
{
    kept = true;
}

bool all_rights_are_kept()
{
    return kept;
}

bool can_take_rights()
{
    unsigned const action = SECCOMP_RET_ERRNO;
    return prctl(PR_GET_SECCOMP) >= 0 && syscall(SYS_seccomp, SECCOMP_GET_ACTION_AVAIL, 0, &action) == 0;
}

} // namespace umbrixlib::toolkit
