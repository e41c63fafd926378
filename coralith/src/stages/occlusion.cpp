// SPDX-License-Identifier: MIT
#include "stages/occlusion.h"

#include "common/even_rays.h"
#include "common/relief.h"
#include "common/rounding.h"
#include "stages/ray_tables.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <vector>

namespace coralith {
namespace {

using umbrixlib::detail::narrow;

constexpr std::size_t kMostStepsOfTable = std::size_t{1} << 20;

/// Counts the open rays of all texels, dispatch by dispatch.
class Counter {
public:
    Counter(Backend& backend, Relief const& relief, PortionRule const& rule, Memory const& heights,
            Memory const& counts, int rays, Progress& progress)
        : backend_(backend), relief_(relief), rule_(rule), heights_(heights), counts_(counts),
          portions_(rule.target_milliseconds, relief.ray_length), offsets_(backend), climbs_(backend),
          ends_(backend), progress_(progress), texels_(Index{relief.rows} * relief.cols),
          units_(3.0 * static_cast<double>(rays) * static_cast<double>(texels_))
    {
    }

    bool count_band(int channel, std::vector<ray> const& rays)
    {
        int const all = static_cast<int>(rays.size());
        for (int first = 0; first < all && !progress_.is_stopped();) {
            RayTable const table = tabulate(relief_, rays.data(), first, all, kMostStepsOfTable);
            if (!offsets_.fill(table.offsets.data(), table.offsets.size()) ||
                !climbs_.fill(table.climbs.data(), table.climbs.size()) ||
                !ends_.fill(table.ends.data(), table.ends.size()) ||
                !count_table(channel, table.rays(), first == 0)) {
                return false;
            }
            first += table.rays();
        }
        return true;
    }

private:
    /// A dispatch has many rays of all texels, or one ray of some.
    bool count_table(int channel, int rays, bool starts)
    {
        for (int ray = 0; ray < rays && !progress_.is_stopped();) {
            Index const wanted =
                rule_.rays > 0 ? rule_.rays : std::max<Index>(portions_.units() / texels_, 1);
            int const count = static_cast<int>(std::min<Index>(wanted, rays - ray));
            for (Index first = 0; first < texels_ && !progress_.is_stopped();) {
                Index const most = rule_.rays > 0 ? texels_ : std::max<Index>(portions_.units() / count, 1);
                Index const part = std::min(most, texels_ - first);
                if (!dispatch(channel, starts && ray == 0, ray, count, first, part)) {
                    return false;
                }
                first += part;
            }
            ray += count;
        }
        return true;
    }

    bool dispatch(int channel, bool starts, int ray, int rays, Index first, Index count)
    {
        auto const before = std::chrono::steady_clock::now();
        if (!backend_.launch(Kernel::kCountOpenRays, count,
                             {heights_, counts_, offsets_, climbs_, ends_, relief_.rows, relief_.cols,
                              int{relief_.rows_wrap}, int{relief_.columns_wrap}, relief_.top, relief_.reach,
                              channel, int{starts}, ray, rays, first, count}) ||
            !backend_.finish()) {
            return false;
        }
        std::chrono::duration<double, std::milli> const time = std::chrono::steady_clock::now() - before;
        portions_.took(count * rays, time.count());
        done_ += static_cast<double>(count) * rays;
        progress_.reached(done_, units_);
        return true;
    }

    Backend& backend_;
    Relief const& relief_;
    PortionRule const& rule_;
    Memory const& heights_;
    Memory const& counts_;
    Portions portions_;
    DeviceArray offsets_;
    DeviceArray climbs_;
    DeviceArray ends_;
    Progress& progress_;
    Index texels_;
    double units_;
    double done_ = 0;
};

/// Entry n is what n open rays of all are worth.
std::vector<float> shares_of(int rays)
{
    std::vector<float> shares;
    shares.reserve(static_cast<std::size_t>(rays) + 1);
    for (int open = 0; open < rays; ++open) {
        shares.push_back(narrow(static_cast<double>(open) / static_cast<double>(rays)));
    }
    shares.push_back(1.0f);
    return shares;
}

} // namespace

bool directional_occlusion(Backend& backend, Shape shape, OcclusionSettings const& settings,
                           PortionRule const& rule, float const* heights, float* occlusion,
                           Progress& progress)
{
    Relief const relief = umbrixlib::detail::relief_over(heights, shape.rows, shape.cols, settings.rows_wrap,
                                                         settings.columns_wrap, settings.radius);
    if (shape.rows == 1 || shape.cols == 1 || settings.rays < 1 || relief.ray_length < 1) {
        std::fill_n(occlusion, shape.texels() * 3, 1.0f);
        progress.finish();
        return true;
    }
    auto const count = static_cast<std::size_t>(settings.rays);
    std::array<std::vector<ray>, 3> bands = {std::vector<ray>(count), std::vector<ray>(count),
                                             std::vector<ray>(count)};
    auto& [c, b, a] = bands; // in the order of the channels
    umbrixlib::detail::even_rays(shape.cols, {a.data(), b.data(), c.data()}, settings.rays,
                                 settings.theta_limit, settings.alpha_limit);

    DeviceArray map(backend);
    DeviceArray counts(backend);
    DeviceArray share_table(backend);
    DeviceArray result(backend);
    std::vector<float> const shares = shares_of(settings.rays);
    if (!map.fill(heights, static_cast<std::size_t>(shape.texels())) || !counts.reserve(shape.bytes(3)) ||
        !share_table.fill(shares.data(), shares.size())) {
        return false;
    }
    Counter counter(backend, relief, rule, map.memory(), counts.memory(), settings.rays, progress);
    for (int channel = 0; channel < 3; ++channel) {
        if (!counter.count_band(channel, bands[static_cast<std::size_t>(channel)])) {
            return false;
        }
    }
    Index const floats = shape.texels() * 3;
    if (progress.is_stopped()) {
        return true; // no failure of the device; nobody takes the result
    }
    if (!result.reserve(shape.bytes(3)) ||
        !backend.launch(Kernel::kCountsToShares, floats, {counts, share_table, result, floats}) ||
        !backend.finish() || !backend.download(result.memory(), occlusion, shape.bytes(3))) {
        return false;
    }
    progress.finish();
    return true;
}

} // namespace coralith
