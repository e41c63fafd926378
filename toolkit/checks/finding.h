// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// A texel, counted from the upper left one, which is 0, 0.
struct TexelPlace {
    int x = 0;
    int y = 0;

    bool operator==(TexelPlace const&) const = default;
};

/// Something that is not sound about a map.
struct Finding {
    std::string name;       ///< Stable, words joined by '-': "normal-length". One of kFindingNames.
    std::string text;       ///< A sentence with figures, without its full stop.
    std::size_t texels = 0; ///< That it is about; 0 where it is about the picture as a whole.
    double strength = 0.0;  ///< How bad it is; what the number is depends on the name.
    std::optional<TexelPlace> first{}; ///< The first of the texels, row by row from the top.
    std::string fix{};                 ///< What an exact fix does; empty where there is none.

    bool operator==(Finding const&) const = default;
};

/// All names of findings.
inline constexpr char const* kFindingNames[] = {
    "invalid-texels", "normal-length",   "blue-below-half",  "blue-constant",   "flat-value",
    "axes-swapped",   "green-direction", "clipped",          "eight-bit-steps", "jpeg-blocks",
    "seam-x",         "seam-y",          "impossible-light", "lit-picture"};

using Findings = std::vector<Finding>;

/// Counts texels, and keeps the first of them as a user counts: the top row, and in it the leftmost. Rows of
/// a picture are numbered from the bottom.
class Tally {
public:
    /// In a row texels come from left to right, and rows in any order.
    void add(std::size_t x, std::size_t y)
    {
        if (count_ == 0 || y > y_) {
            x_ = x;
            y_ = y;
        }
        ++count_;
    }

    void add(Tally const& other)
    {
        if (other.count_ > 0 && (count_ == 0 || other.y_ > y_)) {
            x_ = other.x_;
            y_ = other.y_;
        }
        count_ += other.count_;
    }

    std::size_t count() const { return count_; }

    /// Of the texels of a picture of that many texels.
    double share(std::size_t texels) const
    {
        return texels == 0 ? 0.0 : static_cast<double>(count_) / static_cast<double>(texels);
    }

    /// Nothing if there are none.
    std::optional<TexelPlace> first(int height) const;

private:
    std::size_t count_ = 0;
    std::size_t x_ = 0;
    std::size_t y_ = 0;
};

/// "1234 of 65536 texels (1.9 %), the first at 3, 0"
std::string in_words(Tally const& tally, std::size_t texels, int height);

/// The largest number that a strength has; what is beyond is as bad.
inline constexpr double kMostStrength = 1000.0;

} // namespace umbrixlib::toolkit
