// SPDX-License-Identifier: MIT
// The blends of two images against their definition.
#include "blend_reference.h"
#include "case_input.h"
#include "demand.h"

#include <umbrixlib.h>

namespace {

using umbrixlib::fuzz::CaseInput;
using umbrixlib::fuzz::demand_same;
using umbrixlib::fuzz::Size;
using umbrixlib::fuzz::words;
using umbrixlib::test::on_target;
using velloric::reference::blended;

float limited(float opacity)
{
    return std::clamp(opacity, 0.0f, 100.0f); // what is no number stays
}

template <typename Pixel>
std::vector<Pixel> defined(BlendType type, float opacity, std::vector<Pixel> const& first,
                           std::vector<Pixel> const& second)
{
    std::vector<Pixel> result(first.size());
    auto const* const a = reinterpret_cast<float const*>(first.data());
    auto const* const b = reinterpret_cast<float const*>(second.data());
    auto* const to = reinterpret_cast<float*>(result.data());
    for (std::size_t i = 0; i < first.size() * (sizeof(Pixel) / sizeof(float)); ++i) {
        to[i] = blended(type, opacity, a[i], b[i]);
    }
    return result;
}

/// The kernels, as a whole or in shares, into an image of its own or into an input.
void check_kernel(CaseInput& input, std::int64_t target, Size size, float opacity, std::string const& what)
{
    BlendType const type = input.flag() ? BlendType_Overlay : BlendType_Blend;
    bool const normals = input.flag();
    int const place = input.whole(0, 2);
    int const shares = input.whole(0, 4); // 0: the form without shares
    auto first = input.image<float3>(size.texels());
    auto second = input.image<float3>(size.texels());
    float const known = opacity > 0.0f ? limited(opacity) : 0.0f; // -0 and what is no number are none
    auto const expected =
        normals ? defined(BlendType_Blend, known, second, first) : defined(type, known, first, second);
    std::vector<float3> own(first.size());
    std::vector<float3>& result = place == 0 ? own : place == 1 ? first : second;
    on_target(target, [&] {
        if (normals) {
            BlendNormal(opacity, first.data(), second.data(), result.data(), size.height, size.width);
        } else if (shares == 0) {
            Blend(type, opacity, first.data(), second.data(), result.data(), size.height, size.width);
        }
        for (int share = 0; share < shares && !normals; ++share) {
            Blend(type, opacity, first.data(), second.data(), result.data(), size.height, size.width, share,
                  shares);
        }
    });
    demand_same(expected, result,
                words(what, normals ? ", normals" : ", colours", ", type ", static_cast<int>(type),
                      ", place ", place, ", ", shares, " shares"));
}

/// The library's own forms, in place.
void check_heights(CaseInput& input, std::int64_t target, Size size, float opacity, std::string const& what)
{
    auto first = input.image<float>(size.texels());
    auto second = input.image<float>(size.texels());
    auto const expected = defined(BlendType_Blend, limited(opacity), first, second);
    on_target(target, [&] { blend(first.data(), second.data(), opacity, size.height, size.width); });
    demand_same(expected, first, what + ", heights");
}

void check_white(CaseInput& input, std::int64_t target, Size size, float opacity, std::string const& what)
{
    auto image = input.image<float3>(size.texels());
    std::vector<float3> const white(image.size(), float3{1.0f, 1.0f, 1.0f});
    auto const expected = defined(BlendType_Blend, limited(opacity), white, image);
    on_target(target, [&] { blend(image.data(), opacity, size.height, size.width); });
    demand_same(expected, image, what + ", from white");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t count)
{
    CaseInput input(bytes, count);
    auto const target = input.target();
    int const threads = input.threads();
    Size const size = input.size();
    float const opacity = input.flag() ? input.between(0.0f, 100.0f) : input.number() * 30.0f;
    std::string const what = words("blend of ", size.height, " rows, ", size.width, " columns, opacity ",
                                   opacity, ", ", threads, " threads, ", hwy::TargetName(target));
    switch (input.whole(0, 3)) {
    case 0:
        check_heights(input, target, size, opacity, what);
        break;
    case 1:
        check_white(input, target, size, opacity, what);
        break;
    default:
        check_kernel(input, target, size, opacity, what);
    }
    return 0;
}
