// SPDX-License-Identifier: MIT
#include "toolkit/checks/finding.h"

#include <fmt/format.h>

namespace umbrixlib::toolkit {

std::optional<TexelPlace> Tally::first(int height) const
{
    if (count_ == 0) {
        return std::nullopt;
    }
    return TexelPlace{static_cast<int>(x_), height - 1 - static_cast<int>(y_)};
}

std::string in_words(Tally const& tally, std::size_t texels, int height)
{
    TexelPlace const first = tally.first(height).value_or(TexelPlace{});
    return fmt::format("{} of {} texels ({:.3g} %), the first at {}, {}", tally.count(), texels,
                       100.0 * tally.share(texels), first.x, first.y);
}

} // namespace umbrixlib::toolkit
