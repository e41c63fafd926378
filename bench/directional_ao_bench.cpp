// SPDX-License-Identifier: MIT

/// The occlusion kernel, set-up included, against the plain ray walk that the tests hold it to. CPU time of
/// the whole process, one thread unless the name says otherwise. The plain walk runs on evenly spread rows
/// and its time stands for all of them. Build this file with -O2; ratios hold within one run, best with
/// --benchmark_enable_random_interleaving=true --benchmark_repetitions=3.

#include "boundary/texture_kernels.h"
#include "directional_ao_reference.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <omp.h>
#include <string>
#include <vector>

namespace {

using Heights = std::vector<float>;

struct Settings {
    char const* name;
    int rays;
    float radius;
    float h_scale;
};
constexpr float kLimit = 120.0f; ///< Of azimuth and elevation, degrees.
constexpr Settings kSettings[] = {
    {"deep", 300, 1.0f, 1.0f}, {"middle", 64, 0.25f, 0.1f}, {"low", 100, 0.5f, 0.02f}};

float hashed(std::uint32_t x, std::uint32_t y, std::uint32_t seed)
{
    std::uint32_t h = x * 0x8da6b343U + y * 0xd8163841U + seed * 0xcb1ab31fU;
    h = (h ^ (h >> 15)) * 0x2c1b3c6dU;
    h = (h ^ (h >> 12)) * 0x297a2d39U;
    return static_cast<float>((h ^ (h >> 15)) >> 8) / 16777216.0f;
}

/// Smooth noise over @p cells by @p cells lattice points that repeats at the borders.
float noise(float u, float v, std::uint32_t cells)
{
    float const x = u * static_cast<float>(cells);
    float const y = v * static_cast<float>(cells);
    auto const column = static_cast<std::uint32_t>(x);
    auto const row = static_cast<std::uint32_t>(y);
    auto const smooth = [](float t) { return t * t * (3.0f - 2.0f * t); };
    float const right = smooth(x - static_cast<float>(column));
    float const down = smooth(y - static_cast<float>(row));
    auto const at = [&](std::uint32_t dx, std::uint32_t dy) {
        return hashed((column + dx) % cells, (row + dy) % cells, cells);
    };
    float const upper = at(0, 0) + (at(1, 0) - at(0, 0)) * right;
    float const lower = at(0, 1) + (at(1, 1) - at(0, 1)) * right;
    return upper + (lower - upper) * down;
}

float terrain(float u, float v)
{
    float height = 0;
    float weight = 0.5f;
    for (std::uint32_t cells = 4; cells <= 256; cells *= 2) {
        height += weight * noise(u, v, cells);
        weight *= 0.5f;
    }
    return height;
}

float bricks(float u, float v)
{
    float const row = v * 12.0f;
    float const column = u * 6.0f + (static_cast<int>(row) % 2 == 0 ? 0.0f : 0.5f);
    auto const from_joint = [](float t) { return std::min(t - std::floor(t), std::ceil(t) - t); };
    float const edge = std::min(from_joint(column) * 2.0f, from_joint(row)) / 0.12f;
    float const rise = std::clamp(edge * 3.0f - 1.0f, 0.0f, 1.0f);
    return 0.1f + 0.7f * rise + 0.15f * noise(u, v, 128) * (0.4f + rise);
}

/// As an 8-bit picture gives them, times the scale.
Heights heights_of(float (*shape)(float, float), int side, float scale)
{
    Heights heights;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            float const h = shape(static_cast<float>(x) / static_cast<float>(side),
                                  static_cast<float>(y) / static_cast<float>(side));
            heights.push_back(std::round(h * 255.0f) / 255.0f * scale);
        }
    }
    return heights;
}

struct Bundles {
    std::vector<ray> a;
    std::vector<ray> b;
    std::vector<ray> c;
};

Bundles rays_of(Settings const& settings, int side)
{
    auto const room = static_cast<std::size_t>(settings.rays) * 2;
    Bundles bundles{std::vector<ray>(room), std::vector<ray>(room), std::vector<ray>(room)};
    ray* a = bundles.a.data();
    ray* b = bundles.b.data();
    ray* c = bundles.c.data();
    GenerateRays(side, side, a, b, c, settings.rays, kLimit, kLimit);
    return bundles;
}

void kernel(benchmark::State& state, float (*shape)(float, float), Settings const& settings, int side,
            int threads)
{
    omp_set_num_threads(threads);
    Heights heights = heights_of(shape, side, settings.h_scale);
    std::vector<float3> occlusion(heights.size());
    for (auto _ : state) {
        Bundles rays = rays_of(settings, side);
        Height2DirectionalAO(occlusion.data(), heights.data(), side, side, rays.a.data(), rays.b.data(),
                             rays.c.data(), settings.rays, settings.h_scale, settings.radius, true, true,
                             true, nullptr);
        benchmark::ClobberMemory();
    }
    state.counters["texels"] = benchmark::Counter(static_cast<double>(heights.size()),
                                                  benchmark::Counter::kIsIterationInvariantRate);
}

void plain(benchmark::State& state, float (*shape)(float, float), Settings const& settings, int side)
{
    constexpr int kRows = 16;
    Heights const heights = heights_of(shape, side, settings.h_scale);
    Bundles const rays = rays_of(settings, side);
    velloric::reference::Occlusion const walk(heights, side, side, rays.a.data(), rays.b.data(),
                                              rays.c.data(), settings.rays, settings.radius, true, true,
                                              true);
    for (auto _ : state) {
        double const start = static_cast<double>(std::clock());
        for (int y = 0; y < side; y += side / kRows) {
            for (int x = 0; x < side; ++x) {
                benchmark::DoNotOptimize(walk.at(y, x));
            }
        }
        double const spent = (static_cast<double>(std::clock()) - start) / CLOCKS_PER_SEC;
        state.SetIterationTime(spent * side / kRows);
    }
    state.SetLabel("16 rows, time scaled to all");
}

int const registered = [] {
    struct Shape {
        char const* name;
        float (*height)(float, float);
    };
    for (Shape const& shape : {Shape{"terrain", terrain}, Shape{"bricks", bricks}}) {
        for (Settings const& settings : kSettings) {
            for (int const side : {512, 1024}) {
                std::string const name = std::string("directional_ao/") + shape.name + "/" + settings.name +
                                         "/" + std::to_string(side);
                for (int const threads : {1, 2}) {
                    benchmark::RegisterBenchmark(
                        (name + (threads == 1 ? "/kernel" : "/kernel_two_threads")).c_str(), kernel,
                        shape.height, settings, side, threads)
                        ->Unit(benchmark::kMillisecond)
                        ->MeasureProcessCPUTime()
                        ->UseRealTime();
                }
                benchmark::RegisterBenchmark((name + "/plain").c_str(), plain, shape.height, settings, side)
                    ->Unit(benchmark::kMillisecond)
                    ->UseManualTime()
                    ->Iterations(1);
            }
        }
    }
    return 0;
}();

} // namespace
