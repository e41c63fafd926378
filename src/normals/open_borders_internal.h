// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/texel_array.h"
#include "common/vector_types.h"
#include "foundation/picture_view.h"

#include <cstddef>

namespace umbrixlib::detail {

/// A picture of heights with margins at the borders that do not repeat, wide enough that no filter looks
/// across these. A texel of a margin mirrors one of the picture about the texel on the border, in place and
/// in value: a slope goes on as it is, and the difference across the border is that at its inner side.
class OpenBorders {
public:
    /// @param gaussian, bilateral_radius Of the filters before the difference, in texels; 0 for none.
    OpenBorders(Borders const& borders, int rows, int columns, float gaussian, float bilateral_radius);

    // Of the picture with its margins.
    int rows() const { return rows_ + 2 * margin_rows_; }
    int columns() const { return columns_ + 2 * margin_columns_; }
    std::size_t texels() const
    {
        return static_cast<std::size_t>(rows()) * static_cast<std::size_t>(columns());
    }

    /// @p picture with its margins.
    TexelArray<float> extended(float const* picture) const;
    TexelArray<float3> extended(float3 const* picture) const;

    /// Copies what lies between the margins of @p extended.
    void copy_inside(float3 const* extended, float3* picture) const;

private:
    template <typename Texel>
    TexelArray<Texel> with_margins(Texel const* picture) const;

    int rows_;
    int columns_;
    int margin_rows_;
    int margin_columns_; ///< Texels at each end of a row. No margin is as wide as the picture.
};

} // namespace umbrixlib::detail
