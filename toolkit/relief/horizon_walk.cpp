// SPDX-License-Identifier: MIT
#include "toolkit/relief/horizon_walk.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace umbrixlib::toolkit {

namespace {

/// @p value, or the whole number that rounding has kept it from.
double settled(double value)
{
    constexpr double kRounding = 1e-12;
    double const whole = std::round(value);
    return std::abs(value - whole) < kRounding ? whole : value;
}

} // namespace

HorizonWalk::HorizonWalk(int direction, int directions, double reach)
{
    double const angle = 2.0 * std::numbers::pi * direction / directions;
    double const cosine = settled(std::cos(angle));
    double const sine = settled(std::sin(angle));
    double const larger = std::max(std::abs(cosine), std::abs(sine));
    // One of them is 1 or -1: the columns or the rows that a step crosses.
    x_ = settled(cosine / larger);
    y_ = settled(sine / larger);
    double const length = std::hypot(x_, y_);
    for (int number = 1; number * length <= reach; ++number) {
        add_step(number);
    }
    for (std::size_t first = 0; first < steps_.size(); first += HorizonBlock::kMostSteps) {
        add_block(first);
    }
    x_ /= length;
    y_ /= length;
}

void HorizonWalk::add_step(int number)
{
    double const x = number * x_;
    double const y = number * y_;
    double const before_x = std::floor(x);
    double const before_y = std::floor(y);
    bool const along_row = before_x != x; // else x is whole, and perhaps y as well
    auto const share = static_cast<float>(along_row ? x - before_x : y - before_y);
    HorizonStep step{};
    step.first_x = static_cast<int>(before_x);
    step.first_y = static_cast<int>(before_y);
    step.second_x = step.first_x + (along_row ? 1 : 0);
    step.second_y = step.first_y + (!along_row && share > 0.0f ? 1 : 0);
    step.first_share = 1.0f - share;
    step.second_share = share;
    step.by_distance = static_cast<float>(1.0 / std::hypot(x, y));
    steps_.push_back(step);
}

void HorizonWalk::add_block(std::size_t first)
{
    HorizonBlock block{first, std::min(first + HorizonBlock::kMostSteps, steps_.size()),
                       steps_[first].first_x, steps_[first].first_y, steps_[first].by_distance};
    for (std::size_t i = first; i < block.end; ++i) {
        block.least_x = std::min(block.least_x, steps_[i].first_x);
        block.least_y = std::min(block.least_y, steps_[i].first_y);
    }
    blocks_.push_back(block);
}

} // namespace umbrixlib::toolkit
