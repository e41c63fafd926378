// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <hwy/highway.h>
#include <utility>

namespace umbrixlib::test {

/// Runs @p body with the instruction set @p target forced on all kernels of the process.
template <typename Body>
void on_target(std::int64_t target, Body&& body)
{
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    std::forward<Body>(body)();
    hwy::SetSupportedTargetsForTest(0);
    hwy::GetChosenTarget().DeInit();
}

/// Runs @p body once for every instruction set that this machine can run, with that set forced on all kernels
/// of the process, and hands it the set's name.
template <typename Body>
void for_every_target(Body&& body)
{
    for (std::int64_t const target : hwy::SupportedAndGeneratedTargets()) {
        on_target(target, [&] { body(hwy::TargetName(target)); });
    }
}

} // namespace umbrixlib::test
