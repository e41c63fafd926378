// SPDX-License-Identifier: MIT
// What a stack of layers blends against the blends written out plainly.
#include "case_input.h"
#include "demand.h"
#include "random_stack.h"

#include <umbrixlib.h>

namespace {

using namespace umbrixlib::test;
using umbrixlib::fuzz::CaseInput;
using umbrixlib::fuzz::demand;
using umbrixlib::fuzz::demand_same;
using umbrixlib::fuzz::Size;
using umbrixlib::fuzz::words;

float amount(CaseInput& input, float low, float high)
{
    return input.flag() ? input.between(low, high) : input.number();
}

n_layer record(CaseInput& input)
{
    n_layer record;
    record.blend_mode = input.whole(0, 5) - 1;
    record.opacity = amount(input, -10.0f, 110.0f);
    record.n_scale = amount(input, -2.0f, 4.0f);
    record.L_Detail = input.flag() ? 0.0f : input.between(0.0f, 4.0f); // the window costs time
    record.gaussian = amount(input, 0.0f, 4.0f);
    record.depth = amount(input, -1.0f, 1.0f);
    record.normal_scale = amount(input, 0.0f, 3.0f);
    record.edge_a = amount(input, 0.0f, 1.0f);
    record.edge_b = amount(input, 0.0f, 1.0f);
    record.regenerate = input.flag();
    return record;
}

ReferenceLayer layer(CaseInput& input, layer_size size, bool heights, bool normals)
{
    ReferenceLayer layer{size, heights, normals, {}, {}};
    if (heights) {
        layer.heights = input.image<float>(layer.texels());
    }
    if (normals) {
        layer.normals = input.image<float3>(layer.texels());
    }
    return layer;
}

/// A height layer, and above it up to three of any kind.
ReferenceStack stack(CaseInput& input)
{
    ReferenceStack stack;
    layer_size const size{input.whole(1, 12), input.whole(1, 20)};
    for (int above = input.whole(0, 3), i = 0; i <= above; ++i) {
        switch (i == 0 ? 0 : input.whole(0, 4)) {
        case 0:
        case 1:
            stack.layers.push_back(layer(input, size, true, true));
            break;
        case 2:
            stack.layers.push_back(layer(input, size, false, true));
            break;
        case 3:
            stack.layers.push_back(layer(input, {size.height, size.width + 1}, false, true));
            break;
        default:
            stack.layers.emplace_back(); // blank
        }
        stack.records.push_back(record(input));
    }
    return stack;
}

void check_heights(ReferenceStack const& stack, std::string const& what)
{
    std::size_t const texels = stack.layers[0].texels();
    BuiltStack built(stack);
    auto* heights = new float[texels];
    built.layers.BlendHeightMap(heights);
    std::vector<float> const into_argument(heights, heights + texels);
    delete[] heights;
    demand_same(reference_heights(stack, HeightForm::kReference), into_argument, what + ", heights");
    built.layers.BlendHeightMap();
    std::vector<float> const own(built.layers.height_result, built.layers.height_result + texels);
    demand_same(reference_heights(stack, HeightForm::kNoArgument), own, what + ", heights of the stack");
}

void check_normals(ReferenceStack stack, bool twice, std::string const& what)
{
    std::size_t const texels = stack.layers[0].texels();
    BuiltStack built(stack);
    if (twice) {
        reference_normals(stack, NormalForm::kResult);
        built.layers.BlendLayers();
        std::vector<float3> const result(built.layers.result, built.layers.result + texels);
        demand_same(stack.result, result, what + ", normals of the stack");
    }
    std::vector<float3> destination(texels);
    built.layers.BlendLayers(destination.data());
    demand_same(reference_normals(stack, NormalForm::kDestination), destination, what + ", normals");
    for (std::size_t i = 0; i < stack.layers.size(); ++i) {
        std::vector<float3> const& expected = stack.layers[i].normals;
        float3 const* const actual = built.layers.GetLayer(static_cast<int>(i));
        demand(expected.empty() == (actual == nullptr), words(what, ", layer ", i, " is not as it was"));
        demand_same(expected, std::vector<float3>(actual, actual + expected.size()),
                    words(what, ", normals of layer ", i));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t count)
{
    CaseInput input(bytes, count);
    auto const target = input.target();
    int const threads = input.threads();
    bool const heights = input.flag();
    bool const twice = input.flag();
    ReferenceStack const made = stack(input);
    std::string const what =
        words("stack of ", made.layers.size(), " layers, ", made.layers[0].size.width, " x ",
              made.layers[0].size.height, ", ", threads, " threads, ", hwy::TargetName(target));
    on_target(target, [&] {
        if (heights) {
            check_heights(made, what);
        } else {
            check_normals(made, twice, what);
        }
    });
    return 0;
}
