// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <omp.h>

namespace umbrixlib::detail {

/// While it lives, a run on few texels stays on the calling thread: waking a team takes longer than the work,
/// and on a busy machine a hundred times as long.
class SmallTeam {
public:
    explicit SmallTeam(std::ptrdiff_t texels)
    {
        if (texels <= kFewTexels) {
            omp_set_num_threads(1);
        }
    }
    ~SmallTeam() { omp_set_num_threads(before_); }
    SmallTeam(SmallTeam const&) = delete;
    SmallTeam& operator=(SmallTeam const&) = delete;

private:
    static constexpr std::ptrdiff_t kFewTexels = 64 * 64;

    int const before_ = omp_get_max_threads();
};

} // namespace umbrixlib::detail
