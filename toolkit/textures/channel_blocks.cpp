// SPDX-License-Identifier: MIT
#include "toolkit/textures/channel_blocks.h"

#include "common/vector_targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "toolkit/textures/channel_blocks.cpp"
#include <hwy/foreach_target.h>

#include "common/lanes-inl.h"

#ifndef UMBRIX_TEXTURES_CHANNEL_CODES
#define UMBRIX_TEXTURES_CHANNEL_CODES
namespace umbrixlib::toolkit {

/// What is packed, a number for each block.
struct ChannelCodes {
    alignas(64) float first[ChannelBlocks::kCount];
    alignas(64) float second[ChannelBlocks::kCount];
    alignas(64) float choices[ChannelBlocks::kTexels][ChannelBlocks::kCount];
};

} // namespace umbrixlib::toolkit
#endif

HWY_BEFORE_NAMESPACE();
namespace umbrixlib::toolkit::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

using ChannelLanes = hn::CappedTag<float, ChannelBlocks::kCount>;
using Numbers = hn::Vec<ChannelLanes>; // of as many blocks

constexpr ChannelLanes kLanes;
constexpr std::size_t kBlocksAtOnce = hn::MaxLanes(kLanes);
constexpr float kMost = 255.0f;

HWY_INLINE Numbers set(float number)
{
    return hn::Set(kLanes, number);
}

/// To the nearest whole number, of two the even one; up to 2^22.
HWY_INLINE Numbers rounded(Numbers numbers)
{
    Numbers const without_fraction = set(12582912.0f); // 1.5 * 2^23
    return hn::Sub(hn::Add(numbers, without_fraction), without_fraction);
}

HWY_INLINE Numbers clamped(Numbers numbers, Numbers low, Numbers high)
{
    return hn::Min(hn::Max(numbers, low), high);
}

/// The ends of a ladder of values, whole numbers, and its error.
struct Ends {
    Numbers low;
    Numbers high;
    Numbers error;
};

/// A form of the blocks.
struct EightValues {
    static constexpr float kSteps = 7.0f;
    static constexpr bool kHasOuter = false;
};
struct SixValues {
    static constexpr float kSteps = 5.0f;
    static constexpr bool kHasOuter = true; ///< 0 and 255 are values, too.
};

/// Some blocks, whose ends are looked for.
template <typename Form>
class Search {
public:
    HWY_INLINE explicit Search(Numbers const* texels) : texels_(texels)
    {
        best_ = {set(0.0f), set(1.0f), set(1e30f)};
        Numbers least = set(kMost);
        Numbers most = set(0.0f);
        for (std::size_t i = 0; i < ChannelBlocks::kTexels; ++i) {
            if constexpr (Form::kHasOuter) {
                auto const inside =
                    hn::And(hn::Gt(texels[i], set(0.5f)), hn::Lt(texels[i], set(kMost - 0.5f)));
                least = hn::IfThenElse(inside, hn::Min(least, texels[i]), least);
                most = hn::IfThenElse(inside, hn::Max(most, texels[i]), most);
            } else {
                least = hn::Min(least, texels[i]);
                most = hn::Max(most, texels[i]);
            }
        }
        least_ = least;
        most_ = hn::Max(most, least);
    }

    HWY_INLINE Ends best() const { return best_; }

    /// The ends of the values, and these drawn in by a share of what is between them.
    HWY_INLINE void try_insets(float share)
    {
        Numbers const inset = hn::Mul(hn::Sub(most_, least_), set(share));
        Numbers const lows[] = {least_, hn::Add(least_, inset)};
        Numbers const highs[] = {most_, hn::Sub(most_, inset)};
        for (Numbers const& low : lows) {
            for (Numbers const& high : highs) {
                try_ends(rounded(low), rounded(high));
            }
        }
    }

    /// Whole numbers that have the values between them, and are not the same.
    HWY_INLINE void try_around()
    {
        Numbers const low = hn::Min(hn::Floor(least_), set(kMost - 1.0f));
        try_ends(low, hn::Max(hn::Ceil(most_), hn::Add(low, set(1.0f))));
    }

    /// The line of least squares through the values at their places on the best ladder.
    HWY_INLINE void try_least_squares()
    {
        Numbers const zero = set(0.0f);
        Numbers count = zero;
        Numbers places = zero;
        Numbers squares = zero;
        Numbers values = zero;
        Numbers products = zero;
        Ladder const ladder(best_);
        for (std::size_t i = 0; i < ChannelBlocks::kTexels; ++i) {
            auto const is_between = ladder.is_between(texels_[i]);
            Numbers const place = hn::IfThenElseZero(is_between, ladder.place(texels_[i]));
            Numbers const value = hn::IfThenElseZero(is_between, texels_[i]);
            count = hn::Add(count, hn::IfThenElseZero(is_between, set(1.0f)));
            places = hn::Add(places, place);
            squares = hn::Add(squares, hn::Mul(place, place));
            values = hn::Add(values, value);
            products = hn::Add(products, hn::Mul(place, value));
        }
        Numbers const spread = hn::Sub(hn::Mul(count, squares), hn::Mul(places, places));
        auto const is_line = hn::Gt(spread, set(0.5f));
        Numbers const slope = hn::Div(hn::Sub(hn::Mul(count, products), hn::Mul(places, values)),
                                      hn::IfThenElse(is_line, spread, set(1.0f)));
        Numbers const low =
            hn::Div(hn::Sub(values, hn::Mul(slope, places)), hn::IfThenElse(is_line, count, set(1.0f)));
        Numbers const high = hn::Add(low, hn::Mul(slope, set(Form::kSteps)));
        try_ends(hn::IfThenElse(is_line, rounded(low), best_.low),
                 hn::IfThenElse(is_line, rounded(high), best_.high));
    }

    HWY_INLINE void try_neighbours()
    {
        Ends const middle = best_;
        for (float const low : {-1.0f, 0.0f, 1.0f}) {
            for (float const high : {-1.0f, 0.0f, 1.0f}) {
                if (low != 0.0f || high != 0.0f) {
                    try_ends(hn::Add(middle.low, set(low)), hn::Add(middle.high, set(high)));
                }
            }
        }
    }

    /// The number of the value that @p texel is nearest to on the ladder with the ends @p ends.
    HWY_INLINE static Numbers choice(Ends const& ends, Numbers texel)
    {
        Ladder const ladder(ends);
        Numbers const place = ladder.place(texel);
        auto const is_low = hn::Eq(place, set(0.0f));
        auto const is_high = hn::Eq(place, set(Form::kSteps));
        if constexpr (Form::kHasOuter) { // the low end is first
            Numbers const between = hn::Add(place, set(1.0f));
            Numbers const on_ladder =
                hn::IfThenElse(is_low, set(0.0f), hn::IfThenElse(is_high, set(1.0f), between));
            Numbers const outer = hn::IfThenElse(hn::Lt(texel, set(kMost / 2.0f)), set(6.0f), set(7.0f));
            return hn::IfThenElse(ladder.is_between(texel), on_ladder, outer);
        } else { // the high end is first
            Numbers const between = hn::Sub(set(8.0f), place);
            return hn::IfThenElse(is_high, set(0.0f), hn::IfThenElse(is_low, set(1.0f), between));
        }
    }

private:
    /// Evenly spaced values.
    struct Ladder {
        HWY_INLINE explicit Ladder(Ends const& ends) : low(ends.low)
        {
            Numbers const length = hn::Sub(ends.high, ends.low);
            step = hn::Mul(length, set(1.0f / Form::kSteps));
            by_step = hn::Div(set(Form::kSteps), hn::Max(length, set(0.5f)));
        }

        /// How many steps a texel's value is above the low end: a whole number.
        HWY_INLINE Numbers place(Numbers texel) const
        {
            Numbers const exact = hn::Mul(hn::Sub(texel, low), by_step);
            return rounded(clamped(exact, set(0.0f), set(Form::kSteps)));
        }

        /// Square of how far it is from that.
        HWY_INLINE Numbers error_on_ladder(Numbers texel) const
        {
            Numbers const off = hn::Sub(hn::Sub(texel, low), hn::Mul(place(texel), step));
            return hn::Mul(off, off);
        }

        HWY_INLINE static Numbers error_outside(Numbers texel)
        {
            Numbers const off = hn::Min(texel, hn::Sub(set(kMost), texel));
            return hn::Mul(off, off);
        }

        HWY_INLINE hn::Mask<ChannelLanes> is_between(Numbers texel) const
        {
            if constexpr (Form::kHasOuter) {
                return hn::Le(error_on_ladder(texel), error_outside(texel));
            } else {
                return hn::Eq(texel, texel);
            }
        }

        HWY_INLINE Numbers error(Numbers texel) const
        {
            if constexpr (Form::kHasOuter) {
                return hn::Min(error_on_ladder(texel), error_outside(texel));
            } else {
                return error_on_ladder(texel);
            }
        }

        Numbers low;
        Numbers step;
        Numbers by_step;
    };

    HWY_INLINE void try_ends(Numbers low, Numbers high)
    {
        Ends ends{clamped(low, set(0.0f), set(kMost)), clamped(high, set(0.0f), set(kMost)), set(0.0f)};
        Ladder const ladder(ends);
        Numbers sums[] = {set(0.0f), set(0.0f)};
        for (std::size_t i = 0; i < ChannelBlocks::kTexels; i += 2) {
            sums[0] = hn::Add(sums[0], ladder.error(texels_[i]));
            sums[1] = hn::Add(sums[1], ladder.error(texels_[i + 1]));
        }
        ends.error = hn::Add(sums[0], sums[1]);
        auto const in_order = Form::kHasOuter ? hn::Le(ends.low, ends.high) : hn::Lt(ends.low, ends.high);
        auto const is_better = hn::And(in_order, hn::Lt(ends.error, best_.error));
        best_.low = hn::IfThenElse(is_better, ends.low, best_.low);
        best_.high = hn::IfThenElse(is_better, ends.high, best_.high);
        best_.error = hn::IfThenElse(is_better, ends.error, best_.error);
    }

    Numbers const* texels_;
    Numbers least_; ///< Of the values on the ladder.
    Numbers most_;
    Ends best_;
};

/// Packs the blocks from @p first on, as many as a register holds.
void encode_some(ChannelBlocks const& blocks, std::size_t first, ChannelCodes& codes)
{
    constexpr float kInset = 1.0f / 16.0f;
    Numbers texels[ChannelBlocks::kTexels];
    for (std::size_t i = 0; i < ChannelBlocks::kTexels; ++i) {
        texels[i] = hn::Load(kLanes, &blocks.texels[i][first]);
    }
    Search<EightValues> eight(texels);
    eight.try_around();
    eight.try_insets(kInset);
    eight.try_least_squares();
    eight.try_neighbours();
    Search<SixValues> six(texels);
    six.try_insets(0.0f);
    six.try_least_squares();
    Ends const of_eight = eight.best();
    Ends const of_six = six.best();
    auto const is_six = hn::Lt(of_six.error, of_eight.error);
    hn::Store(hn::IfThenElse(is_six, of_six.low, of_eight.high), kLanes, &codes.first[first]);
    hn::Store(hn::IfThenElse(is_six, of_six.high, of_eight.low), kLanes, &codes.second[first]);
    for (std::size_t i = 0; i < ChannelBlocks::kTexels; ++i) {
        Numbers const choice = hn::IfThenElse(is_six, Search<SixValues>::choice(of_six, texels[i]),
                                              Search<EightValues>::choice(of_eight, texels[i]));
        hn::Store(choice, kLanes, &codes.choices[i][first]);
    }
}

void encode_all(ChannelBlocks const& blocks, ChannelCodes& codes)
{
    for (std::size_t first = 0; first < ChannelBlocks::kCount; first += kBlocksAtOnce) {
        encode_some(blocks, first, codes);
    }
}

} // namespace
} // namespace umbrixlib::toolkit::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace umbrixlib::toolkit {

HWY_EXPORT(encode_all);

CodedChannels encode_channels(ChannelBlocks const& blocks)
{
    ChannelCodes codes;
    HWY_DYNAMIC_DISPATCH(encode_all)(blocks, codes);
    CodedChannels coded;
    for (std::size_t block = 0; block < ChannelBlocks::kCount; ++block) {
        std::uint64_t choices = 0;
        for (std::size_t i = ChannelBlocks::kTexels; i-- > 0;) {
            choices = choices << 3U | static_cast<std::uint64_t>(codes.choices[i][block]);
        }
        coded[block][0] = static_cast<std::uint8_t>(codes.first[block]);
        coded[block][1] = static_cast<std::uint8_t>(codes.second[block]);
        for (std::size_t i = 2; i < coded[block].size(); ++i, choices >>= 8U) {
            coded[block][i] = static_cast<std::uint8_t>(choices);
        }
    }
    return coded;
}

} // namespace umbrixlib::toolkit
#endif
