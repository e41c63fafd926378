// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/formats/png/png_filters.h"
#include "toolkit/pictures/picture.h"

#include <optional>

namespace umbrixlib::toolkit {

/// The rows of a picture as PNG has them: the top one first, the high byte of a sample first. Cut into
/// pieces of whole rows that are packed each by itself.
class PngRows {
public:
    explicit PngRows(Picture const& picture);

    std::size_t sample_bytes() const { return sample_size(picture_.type); }
    std::size_t pieces() const { return (rows_ - 1) / rows_of_piece_ + 1; }

    /// Bytes of a piece's filtered rows.
    std::size_t filtered_size(std::size_t piece) const;

    /// The filtered rows of a piece, each behind the number of its filter, in @p to, whose old bytes go.
    /// @param filter Empty: in each row the one whose bytes, taken for numbers with a sign, have the least
    ///               sum, as libpng chooses.
    void filter(std::size_t piece, std::optional<PngFilter> filter, std::vector<std::uint8_t>& to) const;

    /// The same with the filters that stand in @p filtered, of the same size. False if there is no such one.
    bool filter_like(std::size_t piece, std::span<std::uint8_t const> filtered,
                     std::vector<std::uint8_t>& to) const;

    /// The same of some of the rows of @p count pieces, in stripes spread over them: what shows how all of
    /// them are packed best.
    void filter_sample(std::size_t first_piece, std::size_t count, std::optional<PngFilter> filter,
                       std::vector<std::uint8_t>& to) const;

private:
    /// Appends rows @p first to @p last - 1, filtered.
    /// @param filter The filter of the row that it is given, if it is to be that one.
    template <typename FilterOfRow>
    void append(std::size_t first, std::size_t last, FilterOfRow filter, std::vector<std::uint8_t>& to) const;

    /// Row @p y in the order of the file: the picture's own bytes, or those of @p room.
    std::uint8_t const* row(std::size_t y, std::vector<std::uint8_t>& room) const;

    Picture const& picture_;
    std::size_t rows_;
    std::size_t row_bytes_;
    std::size_t rows_of_piece_;
};

} // namespace umbrixlib::toolkit
