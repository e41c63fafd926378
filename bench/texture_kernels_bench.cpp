// SPDX-License-Identifier: MIT
/// Texture kernels against the plain loops that define them, in one binary. Run it on one thread:
/// `OMP_NUM_THREADS=1 taskset -c 0 texture_kernels_bench --benchmark_enable_random_interleaving=true`.
#include "boundary/texture_kernels.h"

#include "bilateral_filter_reference.h"
#include "height_to_normal_reference.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <random>
#include <vector>

namespace {

constexpr int kSide = 1024;
constexpr std::size_t kTexels = std::size_t{kSide} * kSide;

void count_texels(benchmark::State& state)
{
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kTexels));
}

/// Waves with steps and some grain, in 0..1: what a filter that keeps edges is for.
std::vector<float> relief()
{
    std::mt19937 generator(1);
    std::vector<float> heights;
    double const turn = 2.0 * std::numbers::pi / kSide;
    for (int y = 0; y < kSide; ++y) {
        for (int x = 0; x < kSide; ++x) {
            double const wave = std::sin(9.0 * turn * x) * std::cos(7.0 * turn * y);
            double const step = std::sin(31.0 * turn * (x + y)) > 0.0 ? 0.2 : 0.0;
            double const grain = static_cast<double>(generator()) / 4294967296.0 * 0.1;
            heights.push_back(static_cast<float>(0.35 + 0.3 * wave + step + grain));
        }
    }
    return heights;
}

struct Tables {
    std::vector<float> spatial;
    std::vector<float> range = std::vector<float>(256);

    explicit Tables(int radius) : spatial(static_cast<std::size_t>(radius) + 1)
    {
        GenerateExp(static_cast<float>(radius), spatial.data());
        GenerateExp(128.0f, range.data());
    }
};

void BilateralPlain(benchmark::State& state)
{
    auto const radius = static_cast<int>(state.range(0));
    std::vector<float> const source = relief();
    std::vector<float> result(kTexels);
    Tables const tables(radius);
    for (auto _ : state) {
        velloric::reference::bilateral_filter(source.data(), result.data(), kSide, kSide, 1, radius,
                                              tables.spatial.data(), tables.range.data());
        benchmark::ClobberMemory();
    }
    count_texels(state);
}

void Bilateral(benchmark::State& state)
{
    auto const radius = static_cast<int>(state.range(0));
    std::vector<float> source = relief();
    std::vector<float> result(kTexels);
    Tables tables(radius);
    for (auto _ : state) {
        BilateralFilter(source.data(), result.data(), kSide, kSide, static_cast<float>(radius),
                        tables.spatial.data(), tables.range.data());
        benchmark::ClobberMemory();
    }
    count_texels(state);
}

/// With a range table that the kernel has to fetch from.
void BilateralOtherTable(benchmark::State& state)
{
    auto const radius = static_cast<int>(state.range(0));
    std::vector<float> source = relief();
    std::vector<float> result(kTexels);
    Tables tables(radius);
    tables.range[255] = 0x1p-20f;
    for (auto _ : state) {
        BilateralFilter(source.data(), result.data(), kSide, kSide, static_cast<float>(radius),
                        tables.spatial.data(), tables.range.data());
        benchmark::ClobberMemory();
    }
    count_texels(state);
}

void NormalsPlain(benchmark::State& state)
{
    std::vector<float> const heights = relief();
    std::vector<float3> normals(kTexels);
    for (auto _ : state) {
        velloric::reference::height_to_normal(heights.data(), normals.data(), kSide, kSide);
        benchmark::ClobberMemory();
    }
    count_texels(state);
}

void Normals(benchmark::State& state)
{
    std::vector<float> heights = relief();
    std::vector<float3> normals(kTexels);
    for (auto _ : state) {
        Height2Normal(heights.data(), normals.data(), kSide, kSide);
        benchmark::ClobberMemory();
    }
    count_texels(state);
}

BENCHMARK(BilateralPlain)->Arg(2)->Arg(5)->Arg(10)->Unit(benchmark::kMillisecond);
BENCHMARK(Bilateral)->Arg(2)->Arg(5)->Arg(10)->Unit(benchmark::kMillisecond);
BENCHMARK(BilateralOtherTable)->Arg(2)->Arg(5)->Arg(10)->Unit(benchmark::kMillisecond);
BENCHMARK(NormalsPlain)->Unit(benchmark::kMillisecond);
BENCHMARK(Normals)->Unit(benchmark::kMillisecond);

} // namespace
