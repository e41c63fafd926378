// SPDX-License-Identifier: MIT
#include "compare/occlusion_before/plane.h"

#include <algorithm>

namespace occlusion_before {
namespace {

constexpr std::size_t kLevelsForThreads = 65536; ///< Up to this number one thread is faster.

int round_up(int value, int step)
{
    return (value + step - 1) / step * step;
}

} // namespace

std::ptrdiff_t plane_stride(Relief const& relief)
{
    using AnyPlane = LatticePlane<Lattice>;
    int const stride = round_up(relief.cols + 2 * AnyPlane::kColumnMargin, AnyPlane::kCell);
    // Rows a power of two apart would fall on the same lines of the cache.
    return stride % 512 == 0 ? stride + 4 * AnyPlane::kCell : stride;
}

template <class Lattice>
LatticePlane<Lattice>::LatticePlane(Relief const& relief, Lattice const& lattice, int group_columns)
    : padded_rows_(round_up(relief.rows + 2 * kRowMargin, kCell)), stride_(plane_stride(relief))
{
    cell_stride_ = static_cast<std::size_t>(stride_ / kCell);
    levels_.resize(static_cast<std::size_t>(padded_rows_) * static_cast<std::size_t>(stride_));
    origin_ = levels_.data() + kRowMargin * stride_ + kColumnMargin;
    fill(relief, lattice);
    find_maxima((kMostColumnsSpanned + group_columns + kCell - 2) / kCell + 1);
}

template <class Lattice>
void LatticePlane<Lattice>::fill(Relief const& relief, Lattice const& lattice)
{
#pragma omp parallel for schedule(static) if (levels_.size() > kLevelsForThreads)
    for (int padded = 0; padded < padded_rows_; ++padded) {
        Level* const row = levels_.data() + padded * stride_;
        int const source_row = source(padded - kRowMargin, relief.rows, relief.rows_wrap);
        if (source_row < 0) {
            continue; // zeros: never
        }
        Level* const inside = row + kColumnMargin;
        float const* const heights = relief.heights + static_cast<std::ptrdiff_t>(source_row) * relief.cols;
        for (int column = 0; column < relief.cols; ++column) {
            inside[column] = lattice.height(heights[column]);
        }
        for (int column = -kColumnMargin; column < static_cast<int>(stride_) - kColumnMargin; ++column) {
            if (column == 0) {
                column = relief.cols;
            }
            int const source_column = source(column, relief.cols, relief.columns_wrap);
            inside[column] = source_column < 0 ? static_cast<Level>(Lattice::kNever) : inside[source_column];
        }
    }
}

template <class Lattice>
void LatticePlane<Lattice>::find_maxima(int window_cells)
{
    int const cell_rows = padded_rows_ / kCell;
    auto const cell_columns = static_cast<int>(cell_stride_);
    for (std::vector<Level>& maxima : windows_) {
        maxima.resize(static_cast<std::size_t>(cell_rows) * cell_stride_);
    }
#pragma omp parallel if (levels_.size() > kLevelsForThreads)
    {
        std::vector<Level> columns(static_cast<std::size_t>(stride_));
        std::vector<Level> cells(cell_stride_);
#pragma omp for schedule(static)
        for (int cell_row = 0; cell_row < cell_rows; ++cell_row) {
            std::fill(columns.begin(), columns.end(), Level{0});
            for (int row = cell_row * kCell; row < (cell_row + 1) * kCell; ++row) {
                Level const* const levels = levels_.data() + row * stride_;
                for (std::size_t column = 0; column < columns.size(); ++column) {
                    columns[column] = std::max(columns[column], levels[column]);
                }
            }
            for (std::size_t cell = 0; cell < cell_stride_; ++cell) {
                cells[cell] = *std::max_element(&columns[cell * kCell], &columns[cell * kCell] + kCell);
            }
            Level* const wide = &windows_[0][static_cast<std::size_t>(cell_row) * cell_stride_];
            for (int cell = 0; cell < cell_columns; ++cell) {
                auto const last = cells.begin() + std::min(cell + window_cells, cell_columns);
                wide[cell] = *std::max_element(cells.begin() + cell, last);
            }
        }
#pragma omp for schedule(static)
        for (int cell_row = 0; cell_row < cell_rows; ++cell_row) {
            std::size_t const at = static_cast<std::size_t>(cell_row) * cell_stride_;
            for (int height = 1; height < kWindowHeights; ++height) {
                Level const* const upper = &windows_[height - 1][at];
                Level const* const last =
                    &windows_[0][static_cast<std::size_t>(std::min(cell_row + height, cell_rows - 1)) *
                                 cell_stride_];
                Level* const whole = &windows_[height][at];
                for (std::size_t cell = 0; cell < cell_stride_; ++cell) {
                    whole[cell] = std::max(upper[cell], last[cell]);
                }
            }
        }
    }
}

template class LatticePlane<Lattice>;
template class LatticePlane<ByteLattice>;

} // namespace occlusion_before
