// SPDX-License-Identifier: MIT
#include "toolkit/relief/horizon_tile.h"

#include "common/vector_targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "toolkit/relief/horizon_tile.cpp"
#include <hwy/foreach_target.h>

#include "common/lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace umbrixlib::toolkit::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

using umbrixlib::detail::HWY_NAMESPACE::Floats;
using Values = hn::Vec<Floats>;

constexpr Floats kFloats;
constexpr std::size_t kAtOnce = hn::MaxLanes(Floats());
constexpr std::size_t kRegisters = static_cast<std::size_t>(kGroupColumns) / kAtOnce;

/// The tangents of a group of one row.
class Group {
public:
    /// @param columns Of the group that count; the others are over every horizon.
    HWY_INLINE Group(float const* own, std::size_t columns)
    {
        constexpr float kOverAll = 1e15f; // whose square is a number
        HWY_ALIGN float begin[kGroupColumns];
        for (std::size_t i = 0; i < static_cast<std::size_t>(kGroupColumns); ++i) {
            begin[i] = i < columns ? 0.0f : kOverAll;
        }
        for (std::size_t i = 0; i < kRegisters; ++i) {
            own_[i] = hn::LoadU(kFloats, own + i * kAtOnce);
            tangents_[i] = hn::Load(kFloats, begin + i * kAtOnce);
        }
    }

    /// Looks at the place of @p step, between the texels at @p first and @p second.
    HWY_INLINE void look_between(HorizonStep const& step, float const* first, float const* second)
    {
        Values const first_share = hn::Set(kFloats, step.first_share);
        Values const second_share = hn::Set(kFloats, step.second_share);
        Values const by_distance = hn::Set(kFloats, step.by_distance);
        for (std::size_t i = 0; i < kRegisters; ++i) {
            Values const height = hn::Add(hn::Mul(first_share, hn::LoadU(kFloats, first + i * kAtOnce)),
                                          hn::Mul(second_share, hn::LoadU(kFloats, second + i * kAtOnce)));
            tangents_[i] = hn::Max(tangents_[i], hn::Mul(hn::Sub(height, own_[i]), by_distance));
        }
    }

    /// The same for a place that is a texel.
    HWY_INLINE void look_at(HorizonStep const& step, float const* texel)
    {
        Values const by_distance = hn::Set(kFloats, step.by_distance);
        for (std::size_t i = 0; i < kRegisters; ++i) {
            Values const height = hn::LoadU(kFloats, texel + i * kAtOnce);
            tangents_[i] = hn::Max(tangents_[i], hn::Mul(hn::Sub(height, own_[i]), by_distance));
        }
    }

    HWY_INLINE float least() const
    {
        Values least = tangents_[0];
        for (std::size_t i = 1; i < kRegisters; ++i) {
            least = hn::Min(least, tangents_[i]);
        }
        return hn::GetLane(hn::MinOfLanes(kFloats, least));
    }

    HWY_INLINE void store(float* tangents) const
    {
        for (std::size_t i = 0; i < kRegisters; ++i) {
            hn::StoreU(tangents_[i], kFloats, tangents + i * kAtOnce);
        }
    }

private:
    Values own_[kRegisters];
    Values tangents_[kRegisters];
};

void find_horizons(PaddedHeights const& heights, HorizonWalk const& walk, HorizonTile const& tile,
                   float* tangents)
{
    // More than what rounding adds to a height between two texels, and to a tangent.
    float const slack = 1e-6f * heights.largest();
    constexpr float kRounding = 1.00001f;
    for (int row = 0; row < tile.rows; ++row) {
        int const y = tile.y + row;
        float const from = slack - tile.lowest[static_cast<std::size_t>(row)];
        Group group(heights.row(y) + tile.x, static_cast<std::size_t>(tile.columns));
        float least = 0.0f;
        for (HorizonBlock const& block : walk.blocks()) {
            float const factor = block.by_distance * kRounding;
            if ((heights.top() + from) * factor <= least) {
                break;
            }
            if ((heights.most_from(y + block.least_y, tile.x + block.least_x) + from) * factor <= least) {
                continue;
            }
            for (std::size_t i = block.first; i < block.end; ++i) {
                HorizonStep const& step = walk.steps()[i];
                float const* const first = heights.row(y + step.first_y) + tile.x + step.first_x;
                if (step.second_share > 0.0f) {
                    group.look_between(step, first, heights.row(y + step.second_y) + tile.x + step.second_x);
                } else {
                    group.look_at(step, first);
                }
            }
            least = group.least();
        }
        group.store(tangents + static_cast<std::size_t>(row) * kGroupColumns);
    }
}

HWY_INLINE void add_to(float* sum, Values value)
{
    hn::StoreU(hn::Add(hn::LoadU(kFloats, sum), value), kFloats, sum);
}

void add_sky(float const* tangents, float x, float y, SkySums& sums)
{
    Values const one = hn::Set(kFloats, 1.0f);
    for (std::size_t i = 0; i < HorizonTile::kTexels; i += kAtOnce) {
        Values const tangent = hn::LoadU(kFloats, tangents + i);
        Values const square = hn::Div(one, hn::Add(one, hn::Mul(tangent, tangent))); // of the cosine
        Values const cosine = hn::Sqrt(square);
        Values const cube = hn::Mul(square, cosine);
        Values const sine = hn::Mul(tangent, cosine);
        add_to(&sums.open[i], square);
        add_to(&sums.x[i], hn::Mul(cube, hn::Set(kFloats, x)));
        add_to(&sums.y[i], hn::Mul(cube, hn::Set(kFloats, y)));
        add_to(&sums.z[i], hn::Sub(one, hn::Mul(sine, hn::Mul(sine, sine))));
    }
}

void make_sines(float* tangents)
{
    Values const one = hn::Set(kFloats, 1.0f);
    for (std::size_t i = 0; i < HorizonTile::kTexels; i += kAtOnce) {
        Values const tangent = hn::LoadU(kFloats, tangents + i);
        Values const length = hn::Sqrt(hn::Add(one, hn::Mul(tangent, tangent)));
        hn::StoreU(hn::Div(tangent, length), kFloats, tangents + i);
    }
}

} // namespace
} // namespace umbrixlib::toolkit::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace umbrixlib::toolkit {

HWY_EXPORT(find_horizons);
HWY_EXPORT(add_sky);
HWY_EXPORT(make_sines);

void find_horizons(PaddedHeights const& heights, HorizonWalk const& walk, HorizonTile const& tile,
                   TileNumbers& tangents)
{
    HWY_DYNAMIC_DISPATCH(find_horizons)(heights, walk, tile, tangents.data());
}

void add_sky(TileNumbers const& tangents, HorizonWalk const& walk, SkySums& sums)
{
    HWY_DYNAMIC_DISPATCH(add_sky)
    (tangents.data(), static_cast<float>(walk.x()), static_cast<float>(walk.y()), sums);
}

void make_sines(TileNumbers& tangents)
{
    HWY_DYNAMIC_DISPATCH(make_sines)(tangents.data());
}

} // namespace umbrixlib::toolkit
#endif
