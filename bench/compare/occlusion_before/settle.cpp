// SPDX-License-Identifier: MIT
#include "compare/occlusion_before/settle.h"

#include "compare/occlusion_before/shift.h"
#include "compare/occlusion_before/walk.h"

namespace occlusion_before {

using umbrixlib::detail::RaySteps;

namespace {

using umbrixlib::detail::narrow;
using umbrixlib::detail::wide;

/// What the walk asks at one step.
class StepTest {
public:
    StepTest(Relief const& relief, ReducedRay const& ray, float start)
        : relief_(relief), steps_(ray.step, relief), start_(start), ceiling_(ceiling_over(relief, start))
    {
    }

    /// Whether the ray comes as far as step @p number: it has not climbed over everything before.
    bool comes_to(int number) const { return number == 1 || ceiling_ > height_of_ray(number - 1); }

    bool blocks(int number, int row, int column) const
    {
        int const source_row = LatticePlane<Lattice>::source(row, relief_.rows, relief_.rows_wrap);
        int const source_column = LatticePlane<Lattice>::source(column, relief_.cols, relief_.columns_wrap);
        return relief_.height_at(source_row, source_column) >= height_of_ray(number);
    }

private:
    float height_of_ray(int number) const { return narrow(wide(steps_.climb(number)) + wide(start_)); }

    Relief const& relief_;
    RaySteps steps_;
    float start_;
    float ceiling_;
};

} // namespace

bool is_blocked(Relief const& relief, LatticePlane<Lattice> const& plane, RayBundle const& bundle,
                ReducedRay const& ray, int y, int x)
{
    constexpr int kSurely = Lattice::kSurely - Lattice::kSurelyNot - 1;
    StepTest const test(relief, ray, relief.height_at(y, x));
    // A step whose level is below own + climb does not block the ray.
    int const own = *plane.at(y, x) + Lattice::kSurelyNot + 1;
    AxisShift rows(relief.rows, relief.rows_wrap, 1);
    AxisShift columns(relief.cols, relief.columns_wrap, 1);
    for (std::int32_t b = ray.first_block; b != ray.end_block; ++b) {
        RayBlock const& block = bundle.blocks[static_cast<std::size_t>(b)];
        bool const certain = b < ray.end_certain;
        if (!certain && !test.comes_to(block.number)) {
            return false;
        }
        int const row = rows.onto_map(y + block.row);
        int const column = columns.onto_map(x + block.column);
        if (row == AxisShift::kGone || column == AxisShift::kGone) {
            return false;
        }
        int needed = own + block.climb;
        if (plane.largest_in_window(row + block.north, column + block.west, block.rows_spanned + 1) <
            needed) {
            continue;
        }
        std::int16_t const* const first = plane.at(row, column);
        for (int i = 0; i < block.steps; ++i) {
            RayStep const& step = bundle.steps[static_cast<std::size_t>(block.first_step + i)];
            int const above = first[step.offset] - needed;
            needed += step.levels();
            if (above < 0) {
                continue;
            }
            if (certain && above >= kSurely) {
                return true;
            }
            int step_row = 0;
            int step_column = 0;
            plane.locate(first + step.offset, step_row, step_column);
            if (test.comes_to(block.number + i) && test.blocks(block.number + i, step_row, step_column)) {
                return true;
            }
        }
    }
    return false;
}

} // namespace occlusion_before
