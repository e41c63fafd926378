// SPDX-License-Identifier: MIT
#include "texels/texel_umbrix.h"

#include "boundary/platform.h"
#include "common/ray_steps.h"
#include "common/rounding.h"
#include "texels/ray_directions_internal.h"

#include <algorithm>
#include <atomic>
#include <cstddef>

namespace umbrixlib::detail {

namespace {

float3 table_entry(int step, float3 d, int rows, int cols)
{
    return {texels_passed(step, d.x, cols), texels_passed(step, d.y, rows), height_gained(step, d.z)};
}

std::size_t count_of(int value)
{
    return static_cast<std::size_t>(std::max(value, 0));
}

void allocate(umbrix_options& options)
{
    std::size_t const rays = count_of(options.rays);
    options.dir_c = new float3[rays]();
    options.dir_b = new float3[rays]();
    options.dir_a = new float3[rays]();
    options.table_c = new float3*[rays]();
    options.table_b = new float3*[rays]();
    options.table_a = new float3*[rays]();
}

void release(umbrix_options& options)
{
    delete[] options.dir_c;
    delete[] options.dir_b;
    delete[] options.dir_a;
    for (int i = 0; i < options.rays; ++i) {
        delete[] options.table_c[i];
        delete[] options.table_b[i];
        delete[] options.table_a[i];
    }
    delete[] options.table_c;
    delete[] options.table_b;
    delete[] options.table_a;
}

void build_rays(umbrix_options& options, int rows, int cols, int length)
{
    float const inv_width = narrow(1.0 / wide(static_cast<float>(cols)));
    platform::seed_random(static_cast<unsigned>(platform::seconds_since_epoch()));
    Elevations const upper(kUpperElevation, options.alpha_limit);
    Elevations const lower(kLowerElevation, options.alpha_limit);

    // Contract: the step number is one variable for all threads of the loop. One of its own for each ray is
    // expected; as it is, threads take steps out of each other's hands, and a lost entry stays zero. Only a
    // run on one thread has complete tables. Test: Height2Umbrix.OneThreadBuildsCompleteTables
    std::atomic<int> shared_step = 0;

#pragma omp parallel for schedule(static)
    for (int i = 0; i < options.rays; ++i) {
        ThreeBands const directions = i == 0 ? ThreeBands{options.basis_a, options.basis_b, options.basis_c}
                                             : jittered_directions(upper, lower, options.theta_limit);
        options.dir_a[i] = step_vector(directions.a, inv_width);
        options.dir_b[i] = step_vector(directions.b, inv_width);
        options.dir_c[i] = step_vector(directions.c, inv_width);
        options.table_c[i] = new float3[count_of(length)]();
        options.table_b[i] = new float3[count_of(length)]();
        options.table_a[i] = new float3[count_of(length)]();
        shared_step.store(1, std::memory_order_relaxed);
        for (;;) {
            int const step = shared_step.load(std::memory_order_relaxed);
            if (step > length) {
                break;
            }
            options.table_c[i][step - 1] = table_entry(step, options.dir_c[i], rows, cols);
            options.table_b[i][step - 1] = table_entry(step, options.dir_b[i], rows, cols);
            options.table_a[i][step - 1] = table_entry(step, options.dir_a[i], rows, cols);
            shared_step.store(step + 1, std::memory_order_relaxed);
        }
    }
}

struct MaximumSearch {
    float max_height; ///< At least 0.
    int row;          ///< Where the scan ended.
    int col;          ///< Where the scan of the last row ended.
};

/// Contract: once the maximum is exactly 1, a value that is not greater ends the scan of its row; heights
/// behind it do not count. The whole buffer is expected to be searched. Test:
/// Height2Umbrix.AHeightOfOneEndsTheScanOfItsRow
MaximumSearch search_maximum(float const* heights, int rows, int cols)
{
    MaximumSearch found{0.0f, std::max(rows, 0), 0};
    for (int row = 0; row < rows; ++row) {
        float const* const line = heights + static_cast<std::ptrdiff_t>(row) * cols;
        for (found.col = 0; found.col < cols; ++found.col) {
            if (line[found.col] > found.max_height) {
                found.max_height = line[found.col];
            } else if (found.max_height == 1.0f) {
                break;
            }
        }
    }
    return found;
}

float clamped(float share)
{
    if (share > 1.0f) {
        return 1.0f;
    }
    return share < 0.0f ? 0.0f : share;
}

} // namespace

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

bool height2umbrix(float* heights, float3* out, int rows, int cols, umbrix_options& options, int* progress)
{
    int const length = ray_length(cols, options.radius);
    allocate(options);
    build_rays(options, rows, cols, length);
    MaximumSearch const found = search_maximum(heights, rows, cols);
    *progress = 0;

    // One pass for each texel of the image, all of them with the same arguments and the same target: one is
    // enough.
    if (rows > 0 && cols > 0) {
        auto const share = [&](float3** table) {
            return clamped(trace_rays(heights, rows, cols, found.row, found.col, options.rays,
                                      options.h_scale, found.max_height, options.radius, table, length,
                                      options.tile, options.h_tile, options.v_tile));
        };
        float3& target = out[static_cast<std::ptrdiff_t>(found.row) * cols + found.col];
        target.y = share(options.table_b);
        target.z = share(options.table_a);
        target.x = share(options.table_c);
    }
    release(options);
    return true;
}

} // namespace umbrix_v0
