// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <hwy/highway.h>
#include <utility>

namespace umbrixlib::test {

/// Runs @p body once for every instruction set that this machine can run, with that set forced on all kernels
/// of the process, and hands it the set's name.
template <typename Body>
void for_every_target(Body&& body)
{
    for (std::int64_t const target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        std::forward<Body>(body)(hwy::TargetName(target));
    }
    hwy::SetSupportedTargetsForTest(0);
    hwy::GetChosenTarget().DeInit();
}

} // namespace umbrixlib::test
