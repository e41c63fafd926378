// SPDX-License-Identifier: MIT
// The occlusion kernel against the walk of each ray.
#include "boundary/texture_kernels.h"
#include "case_input.h"
#include "demand.h"
#include "directional_ao_reference.h"

namespace {

using umbrixlib::fuzz::CaseInput;
using umbrixlib::fuzz::Size;
using velloric::reference::Occlusion;
using velloric::reference::ray_length;

constexpr int kLongest = 100; ///< Steps of a ray, for the sake of time.

struct Bundles {
    std::vector<ray> a, b, c;
};

Bundles generated(CaseInput& input, Size size, int rays)
{
    auto const room = static_cast<std::size_t>(rays) * 2;
    Bundles bundles{std::vector<ray>(room), std::vector<ray>(room), std::vector<ray>(room)};
    ray* a = bundles.a.data();
    ray* b = bundles.b.data();
    ray* c = bundles.c.data();
    float const theta_limit = input.between(0.0f, 180.0f);
    GenerateRays(size.height, size.width, a, b, c, rays, theta_limit, input.between(0.0f, 180.0f));
    return bundles;
}

/// A step of a few columns, or one that no map is wide enough for: the walk counts the turns in between.
float columns(CaseInput& input, int width)
{
    float const step = input.number();
    return std::fabs(step) <= 4.0f ? step / static_cast<float>(width) : std::copysign(1e30f, step);
}

std::vector<ray> any_rays(CaseInput& input, Size size, int rays)
{
    std::vector<ray> bundle;
    for (int i = 0; i < rays; ++i) {
        float const x = input.flag() ? std::copysign(1.0f / static_cast<float>(size.width), input.number())
                                     : columns(input, size.width);
        float const y = input.number();
        bundle.push_back({x, y, input.number()});
    }
    return bundle;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t count)
{
    CaseInput input(bytes, count);
    auto const target = input.target();
    int const threads = input.threads();
    Size const size = input.size();
    int const rays = input.whole(0, 6);
    unsigned const flags = input.byte();
    bool const tile = (flags & 1U) != 0;
    bool const h_tile = (flags & 2U) != 0;
    bool const v_tile = (flags & 4U) != 0;
    float radius = input.flag() ? input.between(0.0f, 2.0f) : input.number();
    if (ray_length(size.width, radius) > kLongest) {
        radius = static_cast<float>(kLongest) / static_cast<float>(size.width);
    }
    std::vector<float> heights = input.image<float>(size.texels());
    if (float const scale = input.between(0.0f, 2.0f); scale != 0.0f) {
        std::for_each(heights.begin(), heights.end(), [&](float& height) { height *= scale; });
    }
    Bundles bundles = input.flag() ? Bundles{any_rays(input, size, rays), any_rays(input, size, rays),
                                             any_rays(input, size, rays)}
                                   : generated(input, size, rays);

    std::vector<float3> expected(size.texels(), float3{1.0f, 1.0f, 1.0f});
    if (rays > 0 && size.height > 1 && size.width > 1 && ray_length(size.width, radius) > 0) {
        Occlusion const walk(heights, size.height, size.width, bundles.a.data(), bundles.b.data(),
                             bundles.c.data(), rays, radius, tile, h_tile, v_tile);
        for (std::size_t i = 0; i < expected.size(); ++i) {
            auto const texel = static_cast<int>(i);
            expected[i] = walk.at(texel / size.width, texel % size.width);
        }
    }

    std::vector<float3> shares(size.texels(), float3{-9.0f, -9.0f, -9.0f});
    int progress = 0;
    umbrixlib::test::on_target(target, [&] {
        Height2DirectionalAO(shares.data(), heights.data(), size.height, size.width, bundles.a.data(),
                             bundles.b.data(), bundles.c.data(), rays, input.number(), radius, tile, h_tile,
                             v_tile, &progress);
    });
    std::string const what = umbrixlib::fuzz::words(
        "occlusion of ", size.height, " rows, ", size.width, " columns, ", rays, " rays, radius ", radius,
        ", tiling ", flags & 7U, ", ", threads, " threads, ", hwy::TargetName(target));
    umbrixlib::fuzz::demand_same(expected, shares, what);
    umbrixlib::fuzz::demand(progress == 1000, what + ": the progress does not end at 1000");
    return 0;
}
