// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/texture_kernels.h"
#include "common/float_functions.h"
#include "common/rounding.h"
#include "foundation/run_report_internal.h"

#include <algorithm>
#include <omp.h>

namespace umbrixlib::detail {

/// Into how many parts a bilateral filter is cut, so that a run can look between them whether it is to stop.
/// A multiple of @p shares; the result is the same for any number. Each part has many times the rows that
/// only its borders read.
inline int filter_parts(int height, float radius, int shares)
{
    int const reach = to_int(wide(detail::ceil(radius)));
    int const rows_of_part = 8 * std::clamp(reach, 4, 1 << 16);
    return shares * std::max(height / rows_of_part / shares, 1);
}

/// `BilateralFilter` on all threads, as far as the run goes on.
inline void filter_in_parts(float* source, float* destination, int height, int width, float radius,
                            float* spatial, float* range, RunReport const& report)
{
    int const parts = filter_parts(height, radius, omp_get_max_threads());
#pragma omp parallel for schedule(dynamic)
    for (int part = 0; part < parts; ++part) {
        if (!report.stopping()) {
            BilateralFilter(source, destination, height, width, radius, spatial, range, part, parts);
        }
    }
}

} // namespace umbrixlib::detail
