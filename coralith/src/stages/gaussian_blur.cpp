// SPDX-License-Identifier: MIT
#include "stages/gaussian_blur.h"

#include "common/gaussian_coefficients.h"
#include "kernels/gaussian.h"

#include <algorithm>

namespace coralith {
namespace {

using umbrixlib::detail::gaussian_coefficients;
using umbrixlib::detail::GaussianCoefficients;

constexpr Index kMostStepsOfLaunch = Index{1} << 26; ///< Keeps a launch far below what a display stands.

/// Lines of one direction, as the kernels address them.
struct Lines {
    Index count;
    Index group;
    Index group_step;
    Index position_step;
    Index length;
};

/// One pass over all lines, from @p input to @p output.
class Pass {
public:
    Pass(Backend& backend, Memory const& input, Memory const& output, Memory const& state, Lines const& lines,
         int rounding)
        : backend_(backend), input_(input), output_(output), state_(state), lines_(lines),
          rounding_(rounding), stretch_(std::clamp<Index>(kMostStepsOfLaunch / lines.count, 1, lines.length))
    {
    }

    bool run(GaussianCoefficients const& c) const
    {
        return forward(c, kernels::kStarts, 0) && forward(c, 0, kernels::kWrites) &&
               backward(c, kernels::kStarts, 0) && backward(c, 0, kernels::kWrites);
    }

private:
    bool forward(GaussianCoefficients const& c, int first, int always) const
    {
        for (Index begin = 0; begin < lines_.length; begin += stretch_) {
            Index const end = std::min(begin + stretch_, lines_.length);
            int const flags = rounding_ | always | (begin == 0 ? first : 0);
            if (!launch(Kernel::kFilterForward, begin, end, flags, c.a0, c.a1, c)) {
                return false;
            }
        }
        return true;
    }

    bool backward(GaussianCoefficients const& c, int first, int always) const
    {
        for (Index end = lines_.length; end > 0; end -= std::min(stretch_, end)) {
            Index const begin = std::max<Index>(end - stretch_, 0);
            int const flags = rounding_ | always | (end == lines_.length ? first : 0);
            if (!launch(Kernel::kFilterBackward, begin, end, flags, c.a2, c.a3, c)) {
                return false;
            }
        }
        return true;
    }

    bool launch(Kernel kernel, Index begin, Index end, int flags, float feed_1, float feed_2,
                GaussianCoefficients const& c) const
    {
        return backend_.launch(kernel, lines_.count,
                               {input_, output_, state_, lines_.count, lines_.group, lines_.group_step,
                                lines_.position_step, begin, end, flags, feed_1, feed_2, c.b1, c.b2});
    }

    Backend& backend_;
    Memory const& input_;
    Memory const& output_;
    Memory const& state_;
    Lines lines_;
    int rounding_;
    Index stretch_;
};

} // namespace

bool gaussian_blur(Backend& backend, DeviceArray const& map, Shape shape, int components, float sigma)
{
    GaussianCoefficients const coefficients = gaussian_coefficients(sigma);
    int const rounding = components == 1 ? kernels::kRoundsOnce : 0;
    Index const row_floats = Index{shape.cols} * components;
    // Components are filtered alike, so whole columns of pixels are that many columns of floats.
    Lines const columns = {row_floats, row_floats, 0, row_floats, shape.rows};
    Lines const rows = {Index{shape.rows} * components, components, row_floats, components, shape.cols};

    DeviceArray scratch(backend);
    DeviceArray state(backend);
    auto const most_lines = static_cast<std::size_t>(std::max(columns.count, rows.count));
    return scratch.reserve(shape.bytes(components)) && state.reserve(most_lines * 4 * sizeof(float)) &&
           Pass(backend, map.memory(), scratch.memory(), state.memory(), columns, rounding)
               .run(coefficients) &&
           Pass(backend, scratch.memory(), map.memory(), state.memory(), rows, rounding).run(coefficients) &&
           backend.finish();
}

} // namespace coralith
