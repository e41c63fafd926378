// SPDX-License-Identifier: MIT
#include "toolkit/relief/padded_heights.h"

#include "toolkit/base/all_threads.h"
#include "toolkit/relief/horizon_walk.h"

#include <algorithm>
#include <cmath>

namespace umbrixlib::toolkit {

namespace {

/// Low enough to hide nothing, and still a number whose products are numbers.
constexpr float kHidesNothing = -1e30f;

int wrapped(int at, int length)
{
    int const rest = at % length;
    return rest < 0 ? rest + length : rest;
}

std::size_t cells_of(std::size_t length, std::size_t side)
{
    return (length + side - 1) / side;
}

} // namespace

PaddedHeights::PaddedHeights(HeightPlane const& plane, int reach)
    : width_(plane.width), height_(plane.height), reach_(reach), left_(reach),
      stride_(static_cast<std::size_t>(width_ + 2 * reach + 2 * kGroupColumns)),
      cell_stride_(cells_of(stride_, kCellSide)),
      cell_count_(cells_of(static_cast<std::size_t>(height_), kCellSide)),
      heights_(stride_ * (static_cast<std::size_t>(height_) + 1), kHidesNothing)
{
    copy(plane);
    widen(cells(), plane.borders.v_tile);
    for (int y = -reach_; y < height_ + reach_; ++y) {
        bool const inside = plane.borders.v_tile || (y >= 0 && y < height_);
        // A rectangle that begins below the picture may end inside it.
        bool const reaches_inside = plane.borders.v_tile || (y > -HorizonBlock::kExtent && y < height_);
        auto const at = static_cast<std::size_t>(plane.borders.v_tile ? wrapped(y, height_) : std::max(y, 0));
        rows_.push_back(&heights_[stride_ * (inside ? at : static_cast<std::size_t>(height_))] + left_);
        cell_rows_.push_back(&most_[cell_stride_ * (reaches_inside ? at / kCellSide : cell_count_)]);
    }
}

void PaddedHeights::copy(HeightPlane const& plane)
{
    auto const [lowest, highest] =
        std::minmax_element(plane.heights, plane.heights + static_cast<std::ptrdiff_t>(width_) * height_);
    top_ = *highest;
    largest_ = std::max(std::abs(*lowest), std::abs(*highest));
    on_all_threads(static_cast<std::size_t>(height_), [&](auto const& next) {
        for (std::size_t y = next(); y < static_cast<std::size_t>(height_); y = next()) {
            float const* const from = plane.heights + y * static_cast<std::size_t>(width_);
            float* const to = &heights_[y * stride_];
            std::copy_n(from, width_, to + left_);
            if (plane.borders.h_tile) {
                for (int x = 0; x < static_cast<int>(stride_); ++x) {
                    to[x] = from[wrapped(x - left_, width_)];
                }
            }
        }
    });
}

/// The largest heights of squares.
std::vector<float> PaddedHeights::cells() const
{
    std::vector<float> cells(cell_stride_ * cell_count_, kHidesNothing);
    for (std::size_t y = 0; y < static_cast<std::size_t>(height_); ++y) {
        float* const to = &cells[y / kCellSide * cell_stride_];
        float const* const from = &heights_[y * stride_];
        for (std::size_t x = 0; x < stride_; ++x) {
            to[x / kCellSide] = std::max(to[x / kCellSide], from[x]);
        }
    }
    return cells;
}

/// Makes of cells the largest heights of the rectangles that begin in them.
void PaddedHeights::widen(std::vector<float> const& cells, bool repeats)
{
    constexpr std::size_t kRows = HorizonBlock::kExtent;
    constexpr std::size_t kColumns = kGroupColumns + HorizonBlock::kExtent;
    // A rectangle may begin at the end of its first cell, and the last cell before it repeats may be small.
    constexpr std::size_t kMostDown = (kCellSide - 1 + kRows - 1) / kCellSide + 1;
    constexpr std::size_t kMostAcross = (kCellSide - 1 + kColumns - 1) / kCellSide;
    most_.assign(cell_stride_ * (cell_count_ + 1), kHidesNothing);
    std::vector<float> column(cell_stride_);
    for (std::size_t y = 0; y < cell_count_; ++y) {
        std::ranges::fill(column, kHidesNothing);
        for (std::size_t down = 0; down <= kMostDown; ++down) {
            std::size_t const row = y + down;
            if (row >= cell_count_ && !repeats) {
                break;
            }
            float const* const from = &cells[row % cell_count_ * cell_stride_];
            std::transform(column.begin(), column.end(), from, column.begin(),
                           [](float a, float b) { return std::max(a, b); });
        }
        for (std::size_t x = 0; x < cell_stride_; ++x) {
            auto const begin = column.begin() + static_cast<std::ptrdiff_t>(x);
            auto const across = std::min(kMostAcross + 1, cell_stride_ - x);
            most_[y * cell_stride_ + x] =
                *std::max_element(begin, begin + static_cast<std::ptrdiff_t>(across));
        }
    }
}

} // namespace umbrixlib::toolkit
