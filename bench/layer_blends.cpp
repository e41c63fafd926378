// SPDX-License-Identifier: MIT
// `BlendHeightMap` and `BlendLayers` on five layers of 2048 x 2048 texels against `memcpy`, on one processor.
// A blend must read every layer once and write its result once (and the layers' normals, which mode 0
// rewrites); the copy moves as many bytes, half of them read and half written.
#include <umbrixlib.h>

#include "measure/clocks.h"
#include "measure/maps.h"
#include "measure/processors.h"
#include "measure/record.h"
#include "measure/rounds.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <memory>

namespace {

using namespace umbrixlib::bench;

constexpr int kSide = 2048;
constexpr std::size_t kTexels = std::size_t{kSide} * kSide;
constexpr int kLayers = 5;

/// Layers with heights and fresh normals.
class Stack {
public:
    Stack()
    {
        for (int i = 0; i < kLayers; ++i) {
            n_layer record;
            record.opacity = 60.0f;
            record.n_scale = 1.0f;
            record.normal_scale = 1.0f;
            records_.Add(record);
            std::vector<float> heights = heights_of(kMaps[static_cast<std::size_t>(i) % kMaps.size()], kSide);
            auto* const normals = new float3[kTexels];
            std::vector<float> steep = heights;
            std::transform(steep.begin(), steep.end(), steep.begin(), [](float h) { return h * 50.0f; });
            Height2Normal(steep.data(), normals, kSide, kSide);
            stack.heights.Add(new float[kTexels]);
            stack.normals.Add(normals);
            stack.sizes.Add({kSide, kSide});
            std::copy(heights.begin(), heights.end(), stack.heights.tail->data);
        }
    }

    void set_mode(int mode)
    {
        for (int i = 0; i < kLayers; ++i) {
            records_.GetRef(i)->blend_mode = mode;
        }
    }

private:
    LinkedList<n_layer> records_;

public:
    NLayers stack{&records_};
};

constexpr std::size_t kHeightFloats = kLayers + 1;

/// Floats of a texel that a blend of normals must read and write.
constexpr std::array<std::size_t, 4> kNormalFloats = {
    3 * (kLayers + (kLayers - 1) + 1), // every layer, all but the first back, the result
    3 * (kLayers + 1),                 // every layer, the result
    3 * (kLayers + 1) + kLayers,       // and the heights
    3 * (kLayers + 1),
};

void measure(Stack& layers, int mode, Effort const& effort)
{
    std::size_t const normal_floats = kNormalFloats[static_cast<std::size_t>(mode)];
    auto const from = std::make_unique<float[]>(normal_floats * kTexels / 2);
    auto const to = std::make_unique<float[]>(normal_floats * kTexels / 2);
    auto const copy = [&](std::size_t floats) {
        std::memcpy(to.get(), from.get(), floats * kTexels / 2 * sizeof(float));
    };
    auto* heights = new float[kTexels]();
    auto const normals = std::make_unique<float3[]>(kTexels);
    layers.set_mode(mode);
    layers.stack.BlendLayers();
    Seconds const seconds =
        interleaved({{"heights_copy", [&] { copy(kHeightFloats); }},
                     {"heights_into_array", [&] { layers.stack.BlendHeightMap(heights); }},
                     {"heights_into_result", [&] { layers.stack.BlendHeightMap(); }},
                     {"normals_copy", [&] { copy(normal_floats); }},
                     {"normals_into_array", [&] { layers.stack.BlendLayers(normals.get()); }},
                     {"normals_into_result", [&] { layers.stack.BlendLayers(); }}},
                    effort, cpu_seconds);
    delete[] heights;
    print({{"what", "blends"},
           {"mode", mode},
           {"layers", kLayers},
           {"side", kSide},
           {"height_bytes", kHeightFloats * sizeof(float)},
           {"normal_bytes", normal_floats * sizeof(float)},
           {"seconds", seconds}});
}

} // namespace

int main(int count, char** words)
{
    keep_to_processors(1, words);
    Stack layers;
    for (int mode = 0; mode < 4; ++mode) {
        measure(layers, mode, effort_of(count, words));
    }
}
