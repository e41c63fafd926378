// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

namespace umbrixlib::toolkit {

/// A place that a walk visits, as the two texels that it lies between, away from the texel that the walk
/// begins at. The height there is `first_share * first + second_share * second`.
struct HorizonStep {
    int first_x;
    int first_y;
    int second_x;
    int second_y;
    float first_share;
    float second_share;
    float by_distance; ///< 1 / distance from the start, in texels.
};

/// Steps that follow each other.
struct HorizonBlock {
    static constexpr std::size_t kMostSteps = 16;
    /// Columns and rows that the places of a block lie within, from the least of each on.
    static constexpr int kExtent = static_cast<int>(kMostSteps) + 1;

    std::size_t first; ///< Number of its first step.
    std::size_t end;   ///< Number behind its last step.
    int least_x;
    int least_y;
    float by_distance; ///< Of its first step, which is the largest.
};

/// The places over which one direction looks for its horizon: those where its line crosses the columns of
/// texels or, if it is steeper than these, the rows. Along a column or a row heights change in straight lines
/// between texels, so a plane has the horizon that it should; in the directions along an axis and between two
/// of them all places are texels.
class HorizonWalk {
public:
    /// @param direction Number of the direction of @p directions that are evenly spread, counted from x to y.
    /// @param reach     Longest distance, in texels.
    HorizonWalk(int direction, int directions, double reach);

    /// Unit vector of the direction.
    double x() const { return x_; }
    double y() const { return y_; }

    std::vector<HorizonStep> const& steps() const { return steps_; }
    std::vector<HorizonBlock> const& blocks() const { return blocks_; }

private:
    void add_step(int number);
    void add_block(std::size_t first);

    double x_;
    double y_;
    std::vector<HorizonStep> steps_;
    std::vector<HorizonBlock> blocks_;
};

} // namespace umbrixlib::toolkit
