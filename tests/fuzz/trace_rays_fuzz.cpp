// SPDX-License-Identifier: MIT
// The exported walk of the rays: trace_rays against its plain form, and height2umbrix, which rolls dice,
// against what holds for every roll.
#include "case_input.h"
#include "demand.h"
#include "directional_ao_reference.h"

#include <umbrixlib.h>

namespace {

using umbrixlib::fuzz::CaseInput;
using umbrixlib::fuzz::demand;
using umbrixlib::fuzz::demand_same;
using umbrixlib::fuzz::Size;
using umbrixlib::fuzz::words;
using velloric::reference::StepTable;

constexpr int kLongest = 100; ///< Steps of a ray, for the sake of time.

/// An offset in texels: near, or of a size that is no int. The plain form goes round turn by turn.
float offset(CaseInput& input)
{
    float const texels = input.number() * 50.0f;
    return std::fabs(texels) <= 1000.0f ? texels : std::copysign(1e30f, texels);
}

StepTable table_for(CaseInput& input, Size size, int length)
{
    if (input.flag()) {
        float const y = input.number();
        ray const step{(input.flag() ? 1.0f : -1.0f) / static_cast<float>(size.width), y, input.number()};
        return velloric::reference::step_table(step, size.height, size.width, length);
    }
    StepTable table;
    float3 entry{};
    for (int i = 0; i < length; ++i) {
        if (i < 4 || input.byte() != 0) {
            float const x = offset(input);
            float const y = input.between(-8.0f, 8.0f);
            entry = {x, y, input.number()};
        }
        table.push_back(entry);
    }
    return table;
}

bool is_share(float value, int rays)
{
    auto const open = static_cast<int>(std::lround(value * static_cast<float>(rays)));
    return value == static_cast<float>(static_cast<double>(open) / static_cast<double>(rays)) && open >= 0 &&
           open <= rays;
}

void check_trace_rays(CaseInput& input)
{
    Size const size = input.size();
    std::vector<float> heights = input.image<float>(size.texels());
    std::vector<float> const before = heights;
    int const length = input.whole(0, kLongest);
    int const rays = input.whole(1, 5);
    std::vector<StepTable> tables;
    for (int i = 0; i < rays; ++i) {
        tables.push_back(table_for(input, size, length));
    }
    std::vector<float3*> table;
    for (StepTable& each : tables) {
        table.push_back(each.data());
    }
    float const scale = input.flag() ? 1.0f : input.number();
    float const max_height =
        input.flag() ? std::max(0.0f, *std::max_element(heights.begin(), heights.end())) : input.number();
    float const reach = input.number();
    unsigned const flags = input.byte();
    bool const tile = (flags & 1U) != 0;
    bool const h_tile = (flags & 2U) != 0;
    bool const v_tile = (flags & 4U) != 0;
    for (int start = 0; start < 8; ++start) {
        int const y = input.whole(0, 255) % size.height;
        int const x = input.whole(0, 511) % size.width;
        float const share = trace_rays(heights.data(), size.height, size.width, y, x, rays, scale, max_height,
                                       reach, table.data(), length, tile, h_tile, v_tile);
        std::string const what =
            words("the share at ", x, ", ", y, " of ", size.height, " rows, ", size.width, " columns, ", rays,
                  " rays, ", length, " steps, scale ", scale, ", top ", max_height, ", reach ", reach,
                  ", tiling ", flags & 7U);
        demand(is_share(share, rays), words(what, " is ", share));
        if (size.height > 1 && size.width > 1 && length > 0) {
            float const expected =
                velloric::reference::trace_rays(heights.data(), size.height, size.width, y, x, tables, scale,
                                                max_height, reach, length, tile, h_tile, v_tile);
            demand(share == expected, words(what, " is ", share, ", and not ", expected));
        }
    }
    demand_same(before, heights, "trace_rays changes its heights");
}

float3 vector(CaseInput& input)
{
    float const x = input.number();
    float const y = input.number();
    return {x, y, input.number()};
}

void check_height2umbrix(CaseInput& input)
{
    input.threads();
    Size const size = input.size();
    std::size_t const room = size.texels() + static_cast<std::size_t>(size.width) + 1;
    std::vector<float> heights = input.image<float>(room);
    std::vector<float> const before = heights;
    umbrix_options options{};
    options.rays = input.whole(0, 6);
    options.radius = input.flag() ? input.between(0.0f, 2.0f) : input.number();
    if (static_cast<float>(size.width) * options.radius > static_cast<float>(kLongest)) {
        options.radius = static_cast<float>(kLongest) / static_cast<float>(size.width);
    }
    options.h_scale = input.number();
    options.alpha_limit = input.number();
    options.theta_limit = input.number();
    unsigned const flags = input.byte();
    options.tile = (flags & 1U) != 0;
    options.h_tile = (flags & 2U) != 0;
    options.v_tile = (flags & 4U) != 0;
    options.basis_a = vector(input);
    options.basis_b = vector(input);
    options.basis_c = vector(input);
    std::string const what = words("height2umbrix of ", size.height, " rows, ", size.width, " columns, ",
                                   options.rays, " rays, radius ", options.radius);

    float3 const untouched{-9.0f, -9.0f, -9.0f};
    float3 first{};
    for (int run = 0; run < 2; ++run) {
        std::vector<float3> out(room, untouched);
        int progress = 77;
        demand(height2umbrix(heights.data(), out.data(), size.height, size.width, options, &progress),
               what + " says false");
        demand(progress == 0, what + " leaves its progress");
        auto const written = std::find_if(out.begin(), out.end(), [](float3 v) { return v.x != -9.0f; });
        demand(written - out.begin() >= static_cast<std::ptrdiff_t>(size.texels()),
               what + " writes before the place");
        demand(written != out.end(), what + " writes nothing");
        float3 const result = *written;
        for (float const share : {result.x, result.y, result.z}) {
            demand(options.rays == 0 ? std::isnan(share) || share == 1.0f : is_share(share, options.rays),
                   words(what, " gives ", share));
        }
        *written = untouched;
        demand_same(std::vector<float3>(room, untouched), out, what + " writes twice");
        demand_same(before, heights, what + " changes its heights");
        // A single ray is that of the basis: nothing is left to chance.
        if (run == 0) {
            first = result;
        } else if (options.rays < 2) {
            demand_same(std::vector<float3>{first}, std::vector<float3>{result}, what + " once more");
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t count)
{
    CaseInput input(bytes, count);
    if (input.flag()) {
        check_height2umbrix(input);
    } else {
        check_trace_rays(input);
    }
    return 0;
}
