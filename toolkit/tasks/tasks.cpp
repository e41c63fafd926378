// SPDX-License-Identifier: MIT
#include "toolkit/tasks/tasks.h"

namespace umbrixlib::toolkit {

Report run(Job const& job, Observer& observer)
{
    return std::visit([&](auto const& each) -> Report { return run(each, observer); }, job);
}

} // namespace umbrixlib::toolkit
