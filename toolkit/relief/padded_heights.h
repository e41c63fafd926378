// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <umbrixlib.h>
#include <vector>

namespace umbrixlib::toolkit {

/// A picture of heights, which stay the caller's.
struct HeightPlane {
    float const* heights; ///< `width * height` finite numbers, row by row.
    int width;
    int height;
    Borders borders;
};

/// Columns of a group of texels that are worked on at once.
inline constexpr int kGroupColumns = 64;

/// Heights with margins, so that a walk looks at any place of the picture and around it without asking where
/// the borders are. A margin repeats the picture, or is so low that it hides nothing.
class PaddedHeights {
public:
    /// @param reach How far from the picture a place may be, in texels.
    PaddedHeights(HeightPlane const& plane, int reach);

    int width() const { return width_; }
    int height() const { return height_; }

    /// The heights of row @p y, which may be as far as the reach from the picture; column 0 is the picture's
    /// first, and as far from the picture as the reach there are columns, too, and those of a group.
    float const* row(int y) const { return rows_[static_cast<std::size_t>(y + reach_)]; }

    /// A height that is not below any of a rectangle as large as a group's columns and one row, widened by a
    /// block of steps. @p y and @p x are the rectangle's first row and column.
    float most_from(int y, int x) const
    {
        return cell_rows_[static_cast<std::size_t>(y + reach_)]
                         [static_cast<std::size_t>(x + left_) / kCellSide];
    }

    float top() const { return top_; }         ///< The largest height.
    float largest() const { return largest_; } ///< The largest absolute height.

private:
    static constexpr std::size_t kCellSide = 8;

    void copy(HeightPlane const& plane);
    std::vector<float> cells() const;
    void widen(std::vector<float> const& cells, bool repeats);

    int width_;
    int height_;
    int reach_;
    int left_; ///< Columns of the left margin.
    std::size_t stride_;
    std::size_t cell_stride_;
    std::size_t cell_count_; ///< Of rows of cells.
    float top_ = 0.0f;
    float largest_ = 0.0f;
    std::vector<float> heights_; ///< And a row that hides nothing.
    std::vector<float> most_;    ///< Of a rectangle from each cell on, and a row that hides nothing.
    std::vector<float const*> rows_;
    std::vector<float const*> cell_rows_;
};

} // namespace umbrixlib::toolkit
