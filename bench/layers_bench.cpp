// SPDX-License-Identifier: MIT
// Five layers of 2048 x 2048 texels in each blend mode, and a plain copy. Rates count the bytes that the
// steps of a blend read and write, so they compare with the rate of the copy, which reads and writes as well.
#include <umbrixlib.h>

#include "random_image.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdint>
#include <cstring>
#include <memory>

namespace {

using umbrixlib::test::random_image;

constexpr int kSide = 2048;
constexpr std::size_t kTexels = std::size_t{kSide} * kSide;
constexpr int kLayers = 5;

/// Layers past the image border, with fresh normals that point up.
class BenchStack {
public:
    BenchStack()
    {
        for (unsigned i = 0; i < kLayers; ++i) {
            n_layer record;
            record.opacity = 60.0f;
            record.n_scale = 1.0f;
            record.normal_scale = 1.0f;
            records_.Add(record);
            auto const heights = random_image<float>(kTexels, i);
            auto const tilts = random_image<float3>(kTexels, 100 + i);
            stack.heights.Add(new float[kTexels]);
            stack.normals.Add(new float3[kTexels]);
            stack.sizes.Add({kSide, kSide});
            std::copy(heights.begin(), heights.end(), stack.heights.tail->data);
            std::transform(tilts.begin(), tilts.end(), stack.normals.tail->data, [](float3 v) {
                float3 unit{v.x - 0.5f, v.y - 0.5f, v.z + 0.5f};
                normalize(&unit.x);
                return unit;
            });
        }
    }

    void set_mode(int mode)
    {
        for (int i = 0; i < kLayers; ++i) {
            records_.GetRef(i)->blend_mode = mode;
        }
    }

    static BenchStack& instance()
    {
        static BenchStack bench;
        return bench;
    }

private:
    LinkedList<n_layer> records_;

public:
    NLayers stack{&records_};
};

void set_bytes(benchmark::State& state, std::size_t floats_per_texel)
{
    state.SetBytesProcessed(state.iterations() *
                            static_cast<std::int64_t>(floats_per_texel * kTexels * sizeof(float)));
}

/// Floats a texel that a blend of heights reads and writes: the first layer to the blend; each further layer
/// to its scaled copy, which is folded into the blend.
constexpr std::size_t kHeightFloats = 2 + (kLayers - 1) * (2 + 3);

/// Floats a texel that a blend of normals reads and writes: the first layer to the blend; for each further
/// layer the steps of its mode, kernels included; the scale of the blend.
constexpr std::size_t normal_floats(int mode)
{
    constexpr std::size_t kSteps[] = {
        3 * (4 + 3 + 4), // both maps to slopes, cross-fade, both back
        3 * (4 + 3 + 2), // both maps to colours, overlay, one back
        3 * 3 + 2,       // both maps and their heights
        3 * 3,           // both maps
    };
    return 3 * 2 + (kLayers - 1) * kSteps[mode] + 3 * 2;
}

void copy(benchmark::State& state)
{
    constexpr std::size_t kBytes = 24 * kTexels;
    auto const from = std::make_unique<char[]>(kBytes);
    auto const to = std::make_unique<char[]>(kBytes);
    for (auto _ : state) {
        std::memcpy(to.get(), from.get(), kBytes);
        benchmark::ClobberMemory();
    }
    set_bytes(state, 12);
}

void heights_into_array(benchmark::State& state)
{
    BenchStack& bench = BenchStack::instance();
    bench.set_mode(static_cast<int>(state.range(0)));
    auto* blended = new float[kTexels]();
    for (auto _ : state) {
        bench.stack.BlendHeightMap(blended);
    }
    delete[] blended;
    set_bytes(state, kHeightFloats);
}

void heights_into_result(benchmark::State& state)
{
    BenchStack& bench = BenchStack::instance();
    bench.set_mode(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        bench.stack.BlendHeightMap();
    }
    set_bytes(state, kHeightFloats);
}

void normals_into_array(benchmark::State& state)
{
    BenchStack& bench = BenchStack::instance();
    bench.set_mode(static_cast<int>(state.range(0)));
    auto const blended = std::make_unique<float3[]>(kTexels);
    bench.stack.BlendLayers();
    for (auto _ : state) {
        bench.stack.BlendLayers(blended.get());
    }
    set_bytes(state, normal_floats(static_cast<int>(state.range(0))));
}

void normals_into_result(benchmark::State& state)
{
    BenchStack& bench = BenchStack::instance();
    bench.set_mode(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        bench.stack.BlendLayers();
    }
    set_bytes(state, normal_floats(static_cast<int>(state.range(0))));
}

BENCHMARK(copy)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(heights_into_array)->DenseRange(0, 3)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(heights_into_result)->DenseRange(0, 3)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(normals_into_array)->DenseRange(0, 3)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(normals_into_result)->DenseRange(0, 3)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
