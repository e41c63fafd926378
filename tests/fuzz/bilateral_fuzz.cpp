// SPDX-License-Identifier: MIT
// The bilateral filter in its three forms against its definition.
#include "bilateral_filter_reference.h"
#include "boundary/texture_kernels.h"
#include "case_input.h"
#include "demand.h"

namespace {

using umbrixlib::fuzz::CaseInput;
using umbrixlib::fuzz::demand_same;
using umbrixlib::fuzz::Size;
using umbrixlib::test::on_target;

constexpr int kMostTaps = 150'000; ///< Of all texels together, for the sake of time.

struct Weights {
    std::vector<float> spatial, range;
};

bool has_window(float radius)
{
    return std::isfinite(radius) && radius > -1.0f;
}

/// Weights as pipelines make them, or any.
Weights weights_for(CaseInput& input, float radius)
{
    std::size_t const entries = has_window(radius) ? static_cast<std::size_t>(std::ceil(radius)) + 1 : 0;
    Weights weights{std::vector<float>(entries), std::vector<float>(256)};
    if (input.flag()) {
        weights.range = input.image<float>(256);
    } else {
        GenerateExp(128.0f, weights.range.data());
    }
    if (input.flag() && entries > 0) {
        weights.spatial = input.image<float>(entries);
    } else if (entries > 0) {
        GenerateExp(radius, weights.spatial.data());
    }
    return weights;
}

/// The definition for each channel by itself.
template <typename Pixel>
std::vector<Pixel> defined(std::vector<Pixel> const& source, Size size, float radius, Weights const& weights)
{
    if (!has_window(radius)) {
        return source;
    }
    constexpr int kChannels = sizeof(Pixel) / sizeof(float);
    std::vector<Pixel> result(source.size());
    for (int channel = 0; channel < kChannels; ++channel) {
        velloric::reference::bilateral_filter(reinterpret_cast<float const*>(source.data()) + channel,
                                              reinterpret_cast<float*>(result.data()) + channel, size.height,
                                              size.width, kChannels, static_cast<int>(std::ceil(radius)),
                                              weights.spatial.data(), weights.range.data());
    }
    return result;
}

template <typename Pixel>
void check(CaseInput& input, std::int64_t target, Size size, float radius, std::string const& what)
{
    Weights weights = weights_for(input, radius);
    auto source = input.image<Pixel>(size.texels());
    auto const expected = defined(source, size, radius, weights);
    std::vector<Pixel> result(source.size(), Pixel{});
    on_target(target, [&] {
        BilateralFilter(source.data(), result.data(), size.height, size.width, radius, weights.spatial.data(),
                        weights.range.data());
    });
    demand_same(expected, result, what);
    if constexpr (std::is_same_v<Pixel, float>) {
        int const shares = input.whole(1, 5);
        std::fill(result.begin(), result.end(), -9.0f);
        on_target(target, [&] {
            for (int share = shares - 1; share >= 0; --share) {
                BilateralFilter(source.data(), result.data(), size.height, size.width, radius,
                                weights.spatial.data(), weights.range.data(), share, shares);
            }
        });
        demand_same(expected, result, umbrixlib::fuzz::words(what, ", in ", shares, " shares"));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t count)
{
    CaseInput input(bytes, count);
    auto const target = input.target();
    int const threads = input.threads();
    Size size = input.size();
    float radius = input.flag() ? input.between(0.0f, 13.0f) : input.number();
    radius = std::isfinite(radius) ? std::min(radius, 13.0f) : radius;
    if (has_window(radius)) {
        int const side = 2 * static_cast<int>(std::ceil(radius)) + 1;
        size.height = std::clamp(kMostTaps / (side * side * size.width), 1, size.height);
    }
    bool const colours = input.flag();
    std::string const what = umbrixlib::fuzz::words("bilateral filter of ", size.height, " rows, ",
                                                    size.width, " columns, radius ", radius, ", ", threads,
                                                    " threads, ", hwy::TargetName(target));
    if (colours) {
        check<float3>(input, target, size, radius, what + ", colours");
    } else {
        check<float>(input, target, size, radius, what);
    }
    return 0;
}
