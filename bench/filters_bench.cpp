// SPDX-License-Identifier: MIT
/// Pixel filters against the plain loops that define them, in one binary. Run it on one thread:
/// `OMP_NUM_THREADS=1 taskset -c 0 filters_bench --benchmark_enable_random_interleaving=true`.
#include "filters/recursive_gaussian.h"
#include "umbrix/grading.h"

#include "random_image.h"
#include "recursive_gaussian_reference.h"
#include "tone_reference.h"

#include <benchmark/benchmark.h>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace {

using umbrixlib::test::random_image;
namespace reference = umbrixlib::test::reference;

constexpr int kSide = 1024;
constexpr std::size_t kTexels = std::size_t{kSide} * kSide;

void count_texels(benchmark::State& state)
{
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kTexels));
}

template <typename Pixel>
void GaussianPlain(benchmark::State& state)
{
    auto const image = random_image<Pixel>(kTexels, 1);
    std::vector<Pixel> scratch(kTexels);
    std::vector<Pixel> result(kTexels);
    auto const coefficients = reference::gaussian_coefficients(static_cast<float>(state.range(0)));
    for (auto _ : state) {
        reference::gaussian_columns(image.data(), scratch.data(), kSide, kSide, coefficients);
        reference::gaussian_rows(scratch.data(), result.data(), kSide, kSide, coefficients);
        benchmark::ClobberMemory();
    }
    count_texels(state);
}

template <typename Pixel>
void Gaussian(benchmark::State& state)
{
    auto image = random_image<Pixel>(kTexels, 1);
    std::vector<Pixel> scratch(kTexels);
    std::vector<Pixel> result(kTexels);
    for (auto _ : state) {
        gaussianFilterRGBA(image.data(), result.data(), scratch.data(), kSide, kSide,
                           static_cast<float>(state.range(0)));
        benchmark::ClobberMemory();
    }
    count_texels(state);
}

// The chain without its blur. Repeated on one image, it stays within the usual range of values.
constexpr float kContrast = 0.1f;
constexpr int kLow = 5;
constexpr int kHigh = 250;
constexpr float kBrightness = 0.01f;

template <typename Pixel>
void ToneChainPlain(benchmark::State& state)
{
    auto image = random_image<Pixel>(kTexels, 1);
    for (auto _ : state) {
        reference::change_contrast(image.data(), kSide, kSide, kContrast);
        reference::limit_color(image.data(), kSide, kSide, kLow, kHigh);
        reference::brighten(image.data(), kSide, kSide, kBrightness);
        benchmark::ClobberMemory();
    }
    count_texels(state);
}

template <typename Pixel>
void ToneChain(benchmark::State& state)
{
    auto image = random_image<Pixel>(kTexels, 1);
    umbrix_options options{};
    options.contrast = options.h_contrast = kContrast;
    options.min = options.h_min = kLow;
    options.max = options.h_max = kHigh;
    options.brightness = options.h_brightness = kBrightness;
    for (auto _ : state) {
        if constexpr (std::is_same_v<Pixel, float>) {
            PreProcess(image.data(), kSide, kSide, options);
        } else {
            PostProcess(image.data(), kSide, kSide, options);
        }
        benchmark::ClobberMemory();
    }
    count_texels(state);
}

#define UMBRIX_FILTER_BENCHMARKS(Pixel)                                                                      \
    BENCHMARK(GaussianPlain<Pixel>)                                                                          \
        ->Arg(2)                                                                                             \
        ->Arg(8)                                                                                             \
        ->Arg(32)                                                                                            \
        ->Unit(benchmark::kMillisecond)                                                                      \
        ->MeasureProcessCPUTime();                                                                           \
    BENCHMARK(Gaussian<Pixel>)                                                                               \
        ->Arg(2)                                                                                             \
        ->Arg(8)                                                                                             \
        ->Arg(32)                                                                                            \
        ->Unit(benchmark::kMillisecond)                                                                      \
        ->MeasureProcessCPUTime();                                                                           \
    BENCHMARK(ToneChainPlain<Pixel>)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();                \
    BENCHMARK(ToneChain<Pixel>)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()

UMBRIX_FILTER_BENCHMARKS(float);
UMBRIX_FILTER_BENCHMARKS(float3);
UMBRIX_FILTER_BENCHMARKS(float4);

} // namespace
