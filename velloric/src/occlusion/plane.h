// SPDX-License-Identifier: MIT
#pragma once

#include "common/relief.h"
#include "occlusion/byte_lattice.h"
#include "occlusion/lattice.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace velloric {

using umbrixlib::detail::Relief;
using umbrixlib::detail::wrapped;

constexpr int kGroupRows = 8;         ///< Rows of texels that are handled together.
constexpr int kMostGroupColumns = 64; ///< Columns likewise, at most.
constexpr int kMostRowsSpanned = 48;  ///< Rows between the first and the last step of a block, at most.
constexpr int kMostColumnsSpanned = 15;

/// From one row of a map's plane to the next, in elements; the same for all lattices.
std::ptrdiff_t plane_stride(Relief const& relief);

/// Lattice levels of the whole map with a margin that repeats it, or never blocks, so that a block of steps
/// is compared without a test for the border; and the largest level in any window of it.
///
/// The margins hold one block of steps around a group of texels. Further out the map repeats itself: the
/// first step of a block is brought back onto the map by whole periods. That keeps the plane near the size of
/// the map for rays of any length.
///
/// @tparam Lattice The form of the levels.
template <class Lattice>
class LatticePlane {
public:
    using Level = typename Lattice::Level;

    /// @param group_columns Columns of the groups that will be compared.
    LatticePlane(Relief const& relief, Lattice const& lattice, int group_columns);

    /// The level at a texel of the map or of the margin.
    Level const* at(int row, int column) const { return origin_ + row * stride_ + column; }
    /// The texel that @p level, as of `at`, belongs to.
    void locate(Level const* level, int& row, int& column) const
    {
        std::ptrdiff_t const index = level - levels_.data();
        row = static_cast<int>(index / stride_) - kRowMargin;
        column = static_cast<int>(index % stride_) - kColumnMargin;
    }
    /// From one row to the next.
    std::ptrdiff_t stride() const { return stride_; }

    /// At least the largest level in the window from (@p row, @p column) over @p rows rows, at most 56, and
    /// the columns that a group passes over in a block.
    int largest_in_window(int row, int column, int rows) const
    {
        unsigned const first = static_cast<unsigned>(row + kRowMargin) / kCell;
        unsigned const last = static_cast<unsigned>(row + kRowMargin + rows - 1) / kCell;
        unsigned const cell = static_cast<unsigned>(column + kColumnMargin) / kCell;
        return windows_[last - first][first * cell_stride_ + cell];
    }

    /// The texel of the map that position @p index of an axis stands for, or -1 where nothing blocks.
    static int source(int index, int size, bool wraps)
    {
        return wraps || (index >= 0 && index <= size) ? wrapped(index, size) : -1;
    }

private:
    static constexpr int kRowMargin = 56;
    static constexpr int kColumnMargin = 80;
    static constexpr int kCell = 8; ///< Windows are made of cells of 8 by 8 texels.
    static constexpr int kWindowHeights = 8;
    static_assert(kRowMargin >= kMostRowsSpanned + kGroupRows && kRowMargin % kCell == 0);
    static_assert(kColumnMargin >= kMostColumnsSpanned + kMostGroupColumns + 1 && kColumnMargin % kCell == 0);

    friend std::ptrdiff_t plane_stride(Relief const& relief);

    void fill(Relief const& relief, Lattice const& lattice);
    void find_maxima(int window_cells);

    int padded_rows_;
    std::ptrdiff_t stride_;
    std::size_t cell_stride_;
    std::vector<Level> levels_;
    Level const* origin_;
    std::vector<Level> windows_[kWindowHeights]; ///< By height in cells, less one.
};

extern template class LatticePlane<Lattice>;
extern template class LatticePlane<ByteLattice>;

} // namespace velloric
