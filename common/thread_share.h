// SPDX-License-Identifier: MIT
#pragma once

namespace umbrixlib::detail {

/// Whether thread @p thread of @p threads has a share of the work. A team may be larger than the number of
/// shares; its further threads have none.
constexpr bool has_share(int thread, int threads)
{
    return thread >= 0 && thread < threads;
}

} // namespace umbrixlib::detail
