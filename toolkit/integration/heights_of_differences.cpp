// SPDX-License-Identifier: MIT
#include "toolkit/integration/heights_of_differences.h"

#include "toolkit/base/all_threads.h"
#include "toolkit/base/run_progress.h"
#include "toolkit/integration/axis_transform.h"

#include <algorithm>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

constexpr std::size_t kSequences = 2 * kLanes; ///< That are transformed at once.

/// A plane of numbers, row by row.
struct Plane {
    float* numbers;
    std::size_t width;
    std::size_t height;

    float* row(std::size_t y) const { return numbers + y * width; }
};

/// The part of a difference that counts: at a border that does not repeat it spans one texel, not two.
float weight_at(std::size_t at, std::size_t length, bool repeats)
{
    return !repeats && (at == 0 || at + 1 == length) ? 0.5f : 1.0f;
}

/// The transpose of the central difference along a row of @p differences.
void transpose_row(float const* differences, std::size_t length, bool repeats, float* result)
{
    auto const at = [&](std::size_t x) { return weight_at(x, length, repeats) * differences[x]; };
    float const before_first = repeats ? at(length - 1) : -at(0);
    float const behind_last = repeats ? at(0) : -at(length - 1);
    for (std::size_t x = 0; x < length; ++x) {
        bool const inner = x > 1 && x + 2 < length;
        float const before = inner ? differences[x - 1] : x == 0 ? before_first : at(x - 1);
        float const behind = inner ? differences[x + 1] : x + 1 == length ? behind_last : at(x + 1);
        result[x] = before - behind;
    }
}

/// Adds the transpose of the central difference across rows to row @p y.
void add_across(Plane const& differences, std::size_t y, bool repeats, float* result)
{
    std::size_t const last = differences.height - 1;
    std::size_t const before = y > 0 ? y - 1 : repeats ? last : 0;
    std::size_t const behind = y < last ? y + 1 : repeats ? 0 : last;
    float const before_weight = (y > 0 || repeats ? 1.0f : -1.0f) * weight_at(before, last + 1, repeats);
    float const behind_weight = (y < last || repeats ? 1.0f : -1.0f) * weight_at(behind, last + 1, repeats);
    float const* const before_row = differences.row(before);
    float const* const behind_row = differences.row(behind);
    for (std::size_t x = 0; x < differences.width; ++x) {
        result[x] += before_weight * before_row[x] - behind_weight * behind_row[x];
    }
}

/// Makes of @p along, the differences along the rows, the right-hand side of the normal equations.
void make_right_hand_side(Plane const& along, Plane const& across, Borders const& borders)
{
    on_all_threads(along.height, [&](auto const& next) {
        std::vector<float> row(along.width);
        for (std::size_t y = next(); y < along.height; y = next()) {
            transpose_row(along.row(y), along.width, borders.h_tile, row.data());
            add_across(across, y, borders.v_tile, row.data());
            std::ranges::copy(row, along.row(y));
        }
    });
}

/// Lanes of one axis and what their transform needs beside them.
class Workplace {
public:
    explicit Workplace(AxisTransform const& axis)
        : numbers_(kSequences * axis.length()), scratch_(axis.scratch())
    {
    }

    /// Two sequences that are transformed as one have a part in each other's rounding, so lanes without one
    /// hold zeros and not what was there before.
    void clear() { std::ranges::fill(numbers_, 0.0f); }

    ComplexLanes lanes() { return {numbers_.data(), numbers_.data() + numbers_.size() / 2}; }
    float* scratch() { return scratch_.data(); }

    /// Number @p at of each sequence: those of the real parts and, behind half of all, of the imaginary ones.
    float* real(std::size_t at) { return numbers_.data() + at * kLanes; }
    float* imaginary(std::size_t at) { return real(at) + numbers_.size() / 2; }

private:
    std::vector<float> numbers_;
    std::vector<float> scratch_;
};

/// The sequence of lane @p which, from number @p at on.
float* lane_of(Workplace& place, std::size_t which, std::size_t at)
{
    return which < kLanes ? place.real(at) + which : place.imaginary(at) + which - kLanes;
}

/// Calls @p move with a number of a row and its place in the lanes, for @p rows rows from @p first on. A few
/// columns at a time, so that the lanes stay in the cache.
template <typename Move>
void for_rows(Plane const& plane, std::size_t first, std::size_t rows, Workplace& place, Move const& move)
{
    constexpr std::size_t kColumns = 16;
    for (std::size_t x = 0; x < plane.width; x += kColumns) {
        std::size_t const columns = std::min(kColumns, plane.width - x);
        for (std::size_t which = 0; which < rows; ++which) {
            float* const row = plane.row(first + which) + x;
            float* const lane = lane_of(place, which, x);
            for (std::size_t i = 0; i < columns; ++i) {
                move(row[i], lane[i * kLanes]);
            }
        }
    }
}

std::size_t groups_of(std::size_t sequences)
{
    return (sequences + kSequences - 1) / kSequences;
}

/// Calls @p body with each group of @p count sequences, on all threads: its first one and how many there are.
template <typename Body>
void for_groups(std::size_t count, AxisTransform const& axis, RunProgress& progress, Body const& body)
{
    on_all_threads(groups_of(count), [&](auto const& next) {
        Workplace place(axis);
        for (std::size_t first = next() * kSequences; first < count; first = next() * kSequences) {
            if (progress.stopping()) {
                return;
            }
            std::size_t const sequences = std::min(kSequences, count - first);
            if (sequences < kSequences) {
                place.clear();
            }
            body(place, first, sequences);
            progress.add_piece();
        }
    });
}

void transform_rows(Plane const& plane, AxisTransform const& axis, bool forward, RunProgress& progress)
{
    for_groups(plane.height, axis, progress, [&](Workplace& place, std::size_t first, std::size_t rows) {
        for_rows(plane, first, rows, place, [](float from, float& to) { to = from; });
        if (forward) {
            axis.forward(place.lanes(), place.scratch());
        } else {
            axis.backward(place.lanes(), place.scratch());
        }
        for_rows(plane, first, rows, place, [](float& to, float from) { to = from; });
    });
}

std::vector<float> factors_of(AxisTransform const& axis)
{
    std::vector<float> factors(axis.length());
    for (std::size_t i = 0; i < factors.size(); ++i) {
        factors[i] = static_cast<float>(axis.factor(i));
    }
    return factors;
}

/// Solves the normal equations for the waves along the rows that the columns of @p plane are.
void solve_columns(Plane const& plane, AxisTransform const& rows, AxisTransform const& columns,
                   RunProgress& progress)
{
    std::vector<float> const row_factors = factors_of(rows);
    std::vector<float> const column_factors = factors_of(columns);
    // Both transforms give their length times the sequence when they have gone there and back.
    float const scale = 1.0f / (static_cast<float>(plane.width) * static_cast<float>(plane.height));
    auto const solve = [&](float* wave, std::size_t first, std::size_t y, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            float const factor = row_factors[first + i] + column_factors[y];
            wave[i] = factor > 0.0f ? wave[i] * (scale / factor) : 0.0f;
        }
    };
    for_groups(plane.width, columns, progress, [&](Workplace& place, std::size_t first, std::size_t count) {
        std::size_t const real = std::min(count, kLanes);
        std::size_t const imaginary = count - real;
        for (std::size_t y = 0; y < plane.height; ++y) {
            std::copy_n(plane.row(y) + first, real, place.real(y));
            std::copy_n(plane.row(y) + first + real, imaginary, place.imaginary(y));
        }
        columns.forward(place.lanes(), place.scratch());
        for (std::size_t y = 0; y < plane.height; ++y) {
            solve(place.real(y), first, y, real);
            solve(place.imaginary(y), first + real, y, imaginary);
        }
        columns.backward(place.lanes(), place.scratch());
        for (std::size_t y = 0; y < plane.height; ++y) {
            std::copy_n(place.real(y), real, plane.row(y) + first);
            std::copy_n(place.imaginary(y), imaginary, plane.row(y) + first + real);
        }
    });
}

} // namespace

std::optional<std::vector<float>> heights_of_differences(CentralDifferences differences,
                                                         Borders const& borders, RunControl* control)
{
    auto const width = static_cast<std::size_t>(differences.width);
    auto const height = static_cast<std::size_t>(differences.height);
    Plane const plane{differences.along_rows.data(), width, height};
    if (width > 0 && height > 0) {
        make_right_hand_side(plane, {differences.across_rows.data(), width, height}, borders);
        AxisTransform const rows(width, borders.h_tile);
        AxisTransform const columns(height, borders.v_tile);
        RunProgress progress(control, 2 * groups_of(height) + groups_of(width));
        transform_rows(plane, rows, true, progress);
        solve_columns(plane, rows, columns, progress);
        transform_rows(plane, rows, false, progress);
    }
    if (control != nullptr && control->stopping()) {
        return std::nullopt;
    }
    return std::move(differences.along_rows);
}

} // namespace umbrixlib::toolkit
