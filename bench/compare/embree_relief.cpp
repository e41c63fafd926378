// SPDX-License-Identifier: MIT
#include "embree_relief.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace umbrixlib::bench {

namespace {

/// A ray starts this far along, in steps of one texel, so that it does not meet the triangles it stands on.
constexpr float kStart = 0.5f;

float length_of(int side, float radius)
{
    return std::floor(static_cast<float>(side) * radius + 0.5f);
}

} // namespace

EmbreeRelief::EmbreeRelief(std::vector<float> const& heights, int side)
    : heights_(heights), side_(side), device_(rtcNewDevice("threads=1")), scene_(rtcNewScene(device_))
{
    RTCGeometry const mesh = rtcNewGeometry(device_, RTC_GEOMETRY_TYPE_TRIANGLE);
    auto const texels = static_cast<std::size_t>(side) * static_cast<std::size_t>(side);
    auto const cells = static_cast<std::size_t>(side - 1) * static_cast<std::size_t>(side - 1);
    auto* vertex = static_cast<float*>(rtcSetNewGeometryBuffer(mesh, RTC_BUFFER_TYPE_VERTEX, 0,
                                                               RTC_FORMAT_FLOAT3, 3 * sizeof(float), texels));
    auto* index = static_cast<unsigned*>(rtcSetNewGeometryBuffer(
        mesh, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, 3 * sizeof(unsigned), 2 * cells));
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            *vertex++ = static_cast<float>(x) / static_cast<float>(side);
            *vertex++ = static_cast<float>(y) / static_cast<float>(side);
            *vertex++ = heights[static_cast<std::size_t>(y) * static_cast<std::size_t>(side) +
                                static_cast<std::size_t>(x)];
        }
    }
    auto const pitch = static_cast<unsigned>(side);
    for (unsigned y = 0; y + 1 < pitch; ++y) {
        for (unsigned x = 0; x + 1 < pitch; ++x) {
            unsigned const corner = y * pitch + x;
            for (unsigned const each :
                 {corner, corner + 1, corner + pitch, corner + 1, corner + pitch + 1, corner + pitch}) {
                *index++ = each;
            }
        }
    }
    rtcSetGeometryBuildQuality(mesh, RTC_BUILD_QUALITY_HIGH);
    rtcSetSceneBuildQuality(scene_, RTC_BUILD_QUALITY_HIGH);
    rtcCommitGeometry(mesh);
    rtcAttachGeometry(scene_, mesh);
    rtcReleaseGeometry(mesh);
    rtcCommitScene(scene_);
}

EmbreeRelief::~EmbreeRelief()
{
    rtcReleaseScene(scene_);
    rtcReleaseDevice(device_);
}

/// As far as the kernel walks: over the radius, and not higher than it.
EmbreeRelief::Reach EmbreeRelief::reach_of(ray const& step, float radius) const
{
    float const climb = step.z > 0.0f ? radius / step.z : INFINITY;
    return {kStart, std::max(kStart, std::min(length_of(side_, radius), climb))};
}

std::vector<float3> EmbreeRelief::occlusion(Bundles const& bundles, int rays, float radius,
                                            std::vector<int> const& rows) const
{
    constexpr int kLanes = 16;
    alignas(64) int valid[kLanes];
    std::vector<float3> shares;
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    context.flags = RTC_INTERSECT_CONTEXT_FLAG_COHERENT;
    auto const scale = 1.0f / static_cast<float>(side_);
    for (int const y : rows) {
        for (int x = 0; x < side_; x += kLanes) {
            int const lanes = std::min(kLanes, side_ - x);
            std::fill_n(valid, kLanes, 0);
            std::fill_n(valid, lanes, -1);
            float const* const own = heights_.data() + static_cast<std::ptrdiff_t>(y) * side_ + x;
            int open[3][kLanes] = {};
            ray const* const bands[3] = {bundles.c.data(), bundles.b.data(), bundles.a.data()};
            for (int band = 0; band < 3; ++band) {
                for (int i = 0; i < rays; ++i) {
                    ray const& step = bands[band][i];
                    Reach const reach = reach_of(step, radius);
                    RTCRay16 query;
                    for (int lane = 0; lane < kLanes; ++lane) {
                        query.org_x[lane] = static_cast<float>(x + lane) * scale;
                        query.org_y[lane] = static_cast<float>(y) * scale;
                        query.org_z[lane] = own[std::min(lane, lanes - 1)];
                        query.dir_x[lane] = step.x;
                        query.dir_y[lane] = step.y;
                        query.dir_z[lane] = step.z;
                        query.tnear[lane] = reach.first;
                        query.tfar[lane] = reach.last;
                        query.time[lane] = 0.0f;
                        query.mask[lane] = ~0U;
                        query.flags[lane] = 0;
                    }
                    rtcOccluded16(valid, scene_, &context, &query);
                    for (int lane = 0; lane < kLanes; ++lane) {
                        open[band][lane] += query.tfar[lane] >= 0.0f ? 1 : 0;
                    }
                }
            }
            auto const share = [&](int band, int lane) {
                return static_cast<float>(open[band][lane]) / static_cast<float>(rays);
            };
            for (int lane = 0; lane < lanes; ++lane) {
                shares.push_back({share(0, lane), share(1, lane), share(2, lane)});
            }
        }
    }
    return shares;
}

std::vector<float3> EmbreeRelief::occlusion_one_by_one(Bundles const& bundles, int rays, float radius,
                                                       std::vector<int> const& rows) const
{
    std::vector<float3> shares;
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    auto const scale = 1.0f / static_cast<float>(side_);
    for (int const y : rows) {
        for (int x = 0; x < side_; ++x) {
            float const own = heights_[static_cast<std::size_t>(y) * static_cast<std::size_t>(side_) +
                                       static_cast<std::size_t>(x)];
            auto const share = [&](std::vector<ray> const& bundle) {
                int open = 0;
                for (int i = 0; i < rays; ++i) {
                    ray const& step = bundle[static_cast<std::size_t>(i)];
                    Reach const reach = reach_of(step, radius);
                    RTCRay query = {};
                    query.org_x = static_cast<float>(x) * scale;
                    query.org_y = static_cast<float>(y) * scale;
                    query.org_z = own;
                    query.dir_x = step.x;
                    query.dir_y = step.y;
                    query.dir_z = step.z;
                    query.tnear = reach.first;
                    query.tfar = reach.last;
                    query.mask = ~0U;
                    rtcOccluded1(scene_, &context, &query);
                    open += query.tfar >= 0.0f ? 1 : 0;
                }
                return static_cast<float>(open) / static_cast<float>(rays);
            };
            shares.push_back({share(bundles.c), share(bundles.b), share(bundles.a)});
        }
    }
    return shares;
}

} // namespace umbrixlib::bench
