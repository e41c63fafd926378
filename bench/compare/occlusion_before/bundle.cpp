// SPDX-License-Identifier: MIT
#include "compare/occlusion_before/bundle.h"

#include "compare/occlusion_before/plane.h"
#include "compare/occlusion_before/walk.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <tuple>

namespace occlusion_before {

using umbrixlib::detail::RaySteps;

namespace {

using umbrixlib::detail::narrow;
using umbrixlib::detail::wide;

constexpr std::size_t kMostRays = 32767;                 ///< Of a share: their count fits 16 bits.
constexpr std::size_t kManySteps = std::size_t{1} << 21; ///< A share that has so many takes no further ray.
constexpr int kMostStepsOfRay = 1 << 20;                 ///< A ray with more stays unreduced.
constexpr int kMostRows = 1 << 29;                       ///< A step further out could overflow a position.
constexpr std::uint8_t kNearSteps = 8;                   ///< Of a ray's first block: most rays end in it.
constexpr std::uint8_t kFarSteps = 16;                   ///< Of the others.

/// Adds the steps of one ray to a bundle, block by block.
template <class Lattice>
class BlockWriter {
public:
    BlockWriter(RayBundle& bundle, std::ptrdiff_t plane_stride) : bundle_(bundle), stride_(plane_stride) {}

    void add(int number, int row, int column, int climb)
    {
        if (full(row)) {
            bundle_.blocks.push_back({row, column, static_cast<std::int32_t>(bundle_.steps.size()), number,
                                      static_cast<std::int16_t>(climb), 0, 0, 0, 0});
            most_steps_ = number == 1 ? kNearSteps : kFarSteps;
            block_open_ = true;
        }
        RayBlock& block = bundle_.blocks.back();
        int const down = row - block.row;
        int const right = column - block.column;
        if (block.steps != 0) {
            bundle_.steps.back().rise = Lattice::repeated(climb - last_climb_);
        }
        bundle_.steps.push_back({static_cast<std::int32_t>(down * stride_ + right), 0});
        last_climb_ = climb;
        ++block.steps;
        block.rows_spanned = static_cast<std::uint8_t>(std::abs(down));
        block.north = static_cast<std::int8_t>(std::min(down, 0));
        block.west = static_cast<std::int8_t>(std::min(right, 0));
    }

    /// The next step begins a block.
    void close() { block_open_ = false; }

private:
    bool full(int row) const
    {
        return !block_open_ || bundle_.blocks.back().steps == most_steps_ ||
               std::abs(row - bundle_.blocks.back().row) > kMostRowsSpanned;
    }

    RayBundle& bundle_;
    std::ptrdiff_t stride_;
    bool block_open_ = false;
    std::uint8_t most_steps_ = 0;
    int last_climb_ = 0;
};

/// Whether a step @p offset texels along an axis has left the map from every texel of it.
bool outside_from_everywhere(int offset, int size, bool wraps)
{
    return !wraps && (offset > size || offset <= -size);
}

/// Reduces @p step into @p bundle; false, and nothing is added, if the ray cannot be reduced.
template <class Lattice>
bool reduce(ray const& step, Relief const& relief, Lattice const& lattice, std::ptrdiff_t stride,
            RayBundle& bundle)
{
    if (!(step.z >= 0.0f)) {
        return false;
    }
    // Where the map is higher than the reach, rays from low texels end at the reach. Rounded sums leave it
    // open on which side of it a step this near falls.
    bool const reach_counts = wide(relief.top) > wide(relief.lowest) + wide(relief.reach);
    double const doubt = 0x1p-21 * (wide(relief.magnitude) + wide(relief.reach));

    std::size_t const blocks_before = bundle.blocks.size();
    std::size_t const steps_before = bundle.steps.size();
    auto const take_back = [&] {
        bundle.blocks.resize(blocks_before);
        bundle.steps.resize(steps_before);
        return false;
    };
    std::size_t end_certain = SIZE_MAX;
    RaySteps const steps(step, relief);
    BlockWriter<Lattice> writer(bundle, stride);
    int last_column = 0;
    for (int j = 1; j <= relief.ray_length; ++j) {
        int const row = steps.rows(j);
        int const column = steps.columns(j);
        float const z = steps.climb(j);
        int const climb = lattice.climb(z);
        if (row > relief.ray_length || row < -relief.ray_length || column == INT_MIN ||
            outside_from_everywhere(row, relief.rows, relief.rows_wrap) ||
            outside_from_everywhere(column, relief.cols, relief.columns_wrap) ||
            (climb > lattice.most_climb() && lattice.certain(z))) {
            break;
        }
        bool const leaps = std::abs(static_cast<long long>(column) - last_column) > 1;
        if (leaps || std::abs(row) > kMostRows || j > kMostStepsOfRay || !lattice.certain(z)) {
            return take_back();
        }
        writer.add(j, row, column, climb);
        last_column = column;
        if (narrow(wide(z) + wide(relief.lowest)) >= relief.top ||
            (reach_counts && wide(z) >= wide(relief.reach) + doubt)) {
            break;
        }
        if (reach_counts && end_certain == SIZE_MAX && wide(z) >= wide(relief.reach) - doubt) {
            if (!Lattice::kSettles) {
                return take_back();
            }
            end_certain = bundle.blocks.size();
            writer.close();
        }
    }

    double const rise = wide(step.z) * lattice.scale();
    bundle.rays.push_back({step, static_cast<std::int32_t>(blocks_before),
                           static_cast<std::int32_t>(std::min(end_certain, bundle.blocks.size())),
                           static_cast<std::int32_t>(bundle.blocks.size()),
                           rise > 1e-6 ? static_cast<float>(1.00001 / rise) : 1e6f});
    return true;
}

bool all_numbers(ray const& step)
{
    return std::isfinite(step.x) && std::isfinite(step.y) && std::isfinite(step.z);
}

} // namespace

RayReducer::RayReducer(ray const* rays, int count) : rays_(rays, rays + count)
{
    auto const numbers_end = std::partition(rays_.begin(), rays_.end(), all_numbers);
    std::sort(rays_.begin(), numbers_end, [](ray const& first, ray const& second) {
        return std::tie(first.x, first.y) < std::tie(second.x, second.y);
    });
}

RayShare RayReducer::next(Relief const& relief, Lattices const& lattices, std::ptrdiff_t plane_stride)
{
    RayShare share;
    auto const reduced = [&](ray const& step) {
        return all_numbers(step) &&
               ((lattices.bytes && reduce(step, relief, *lattices.bytes, plane_stride, share.bytes)) ||
                (lattices.words && reduce(step, relief, *lattices.words, plane_stride, share.words)));
    };
    while (!done() && share.rays() < kMostRays &&
           share.bytes.steps.size() + share.words.steps.size() < kManySteps) {
        ray const& step = rays_[next_++];
        if (!reduced(step)) {
            share.unreduced.push_back(step);
        }
    }
    return share;
}

} // namespace occlusion_before
