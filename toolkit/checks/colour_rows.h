// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/all_threads.h"
#include "toolkit/pictures/picture.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace umbrixlib::toolkit {

/// Reads rows of a picture as floats, in the picture's own numbers and without its alpha.
class ColourRows {
public:
    explicit ColourRows(Picture const& picture) : picture_(picture) {}

    std::size_t width() const { return static_cast<std::size_t>(picture_.width); }
    std::size_t height() const { return static_cast<std::size_t>(picture_.height); }

    /// Of a texel: 1 or 3.
    std::size_t colours() const { return picture_.channels < 3 ? 1 : 3; }

    /// Row @p y, counted from the bottom: width() times colours() numbers.
    void read(std::size_t y, std::vector<float>& to) const;

private:
    Picture const& picture_;
};

/// Some rows that lie side by side: from @p begin on, and before @p end.
struct RowBand {
    std::size_t begin;
    std::size_t end;
};

/// Calls @p look with bands of @p rows rows, on all threads, and returns what it gives, in their order. The
/// bands are the same for every number of threads, and so are sums over them.
template <typename Look>
auto in_bands(std::size_t rows, Look const& look)
{
    constexpr std::size_t kFewestRows = 64;
    constexpr std::size_t kMostBands = 128;
    std::size_t const rows_of_band = std::max(kFewestRows, (rows + kMostBands - 1) / kMostBands);
    std::vector<decltype(look(RowBand{}))> results((rows + rows_of_band - 1) / rows_of_band);
    on_all_threads(results.size(), [&](auto const& next) {
        for (std::size_t i = next(); i < results.size(); i = next()) {
            results[i] = look(RowBand{i * rows_of_band, std::min(rows, (i + 1) * rows_of_band)});
        }
    });
    return results;
}

} // namespace umbrixlib::toolkit
