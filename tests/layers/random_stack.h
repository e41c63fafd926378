// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Stacks made by hand or by chance, once as the library holds them and once as the reference does.

#include "float_bits.h"
#include "nlayers_reference.h"
#include "random_image.h"

#include <random>

namespace umbrixlib::test {

/// A stack of the library and its records, filled past the image border.
struct BuiltStack {
    LinkedList<n_layer> records;
    NLayers layers{&records};

    explicit BuiltStack(ReferenceStack const& from)
    {
        for (std::size_t i = 0; i < from.layers.size(); ++i) {
            add(from.layers[i], from.records[i]);
        }
        if (!from.result.empty()) {
            layers.result = copied(from.result);
        }
    }

    void add(ReferenceLayer const& layer, n_layer const& record)
    {
        records.Add(record);
        layers.normals.Add(layer.has_normals ? copied(layer.normals) : nullptr);
        layers.heights.Add(layer.has_heights ? copied(layer.heights) : nullptr);
        layers.sizes.Add(layer.size);
    }

    template <typename T>
    static T* copied(std::vector<T> const& values)
    {
        T* const copy = new T[values.size()];
        std::copy(values.begin(), values.end(), copy);
        return copy;
    }
};

inline ReferenceLayer height_layer(layer_size size, std::uint32_t seed, Values values = Values::kUnit)
{
    ReferenceLayer layer{size, true, true, {}, {}};
    layer.heights = random_image<float>(layer.texels(), seed, values);
    layer.normals = random_image<float3>(layer.texels(), seed + 1, Values::kSigned);
    return layer;
}

inline ReferenceLayer normal_layer(layer_size size, std::uint32_t seed, Values values = Values::kSigned)
{
    ReferenceLayer layer{size, false, true, {}, {}};
    layer.normals = random_image<float3>(layer.texels(), seed, values);
    return layer;
}

/// A record that joins the next layer by @p mode and lets its own layer pass as it is.
inline n_layer plain_record(int mode = 0, float opacity = 100.0f)
{
    n_layer record;
    record.blend_mode = mode;
    record.opacity = opacity;
    record.n_scale = 1.0f;
    record.normal_scale = 1.0f;
    return record;
}

/// One to five layers, the first of them a height layer; sizes, kinds and records by chance.
inline ReferenceStack random_stack(std::uint32_t seed)
{
    std::mt19937 generator(seed);
    auto const one_of = [&](auto... choices) {
        std::common_type_t<decltype(choices)...> const all[] = {choices...};
        return all[generator() % (sizeof all / sizeof *all)];
    };
    ReferenceStack stack;
    layer_size const size{one_of(1, 2, 5, 16), one_of(1, 3, 8, 17)};
    std::size_t const count = 1 + generator() % 5;
    for (std::size_t i = 0; i < count; ++i) {
        auto const layer_seed = static_cast<std::uint32_t>(generator());
        Values const values = one_of(Values::kUnit, Values::kSigned, Values::kHostile);
        switch (i == 0 ? 0 : generator() % 6) {
        case 0:
        case 1:
        case 2:
            stack.layers.push_back(height_layer(size, layer_seed, values));
            break;
        case 3:
            stack.layers.push_back(normal_layer(size, layer_seed, values));
            break;
        case 4:
            stack.layers.push_back(normal_layer({size.width + 1, size.height}, layer_seed));
            break;
        default:
            stack.layers.emplace_back();
            break;
        }
        n_layer record;
        record.blend_mode = one_of(0, 1, 2, 3, -1, 99);
        record.opacity = one_of(0.0f, 35.0f, 50.0f, 100.0f, 150.0f, -20.0f, kNaN);
        record.n_scale = one_of(1.0f, 0.5f, 2.0f, 0.0f, -1.0f);
        record.L_Detail = one_of(0.0f, 1.0f, 1.5f, 2.5f);
        record.gaussian = one_of(0.0f, -1.0f, 0.75f);
        record.depth = one_of(0.0f, -0.0f, 0.5f, -0.75f);
        record.normal_scale = one_of(1.0f, 0.5f, 3.0f);
        record.edge_a = one_of(0.0f, 0.5f);
        record.edge_b = one_of(0.0f, 0.25f);
        record.regenerate = one_of(false, true);
        stack.records.push_back(record);
    }
    return stack;
}

} // namespace umbrixlib::test
