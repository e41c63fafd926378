// SPDX-License-Identifier: MIT
#pragma once

#include <ostream>

namespace umbrixlib::test {

/// How often pictures were decoded, encoded and looked at by their encoder in this process. This program has
/// the names by which the toolkit finds its decoders and encoders; they count, and hand on to the toolkit's
/// own.
struct CodingCount {
    int decoded = 0;
    int encoded = 0;
    int looked_at = 0;

    bool operator==(CodingCount const&) const = default;
};
extern CodingCount coding_count;

inline std::ostream& operator<<(std::ostream& to, CodingCount const& count)
{
    return to << count.decoded << " decoded, " << count.encoded << " encoded, " << count.looked_at
              << " looked at";
}

} // namespace umbrixlib::test
