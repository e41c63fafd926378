// SPDX-License-Identifier: MIT
// The kernels that make normals from heights and light from normals against their definitions.
#include "case_input.h"
#include "common/basis.h"
#include "demand.h"
#include "height_to_normal_reference.h"

#include <umbrixlib.h>

namespace {

using umbrixlib::fuzz::CaseInput;
using umbrixlib::fuzz::demand_same;
using umbrixlib::fuzz::Size;
using umbrixlib::fuzz::words;
using umbrixlib::test::on_target;

std::vector<float3> defined(std::vector<float> const& heights, Size size)
{
    std::vector<float3> normals(heights.size());
    velloric::reference::height_to_normal(heights.data(), normals.data(), size.height, size.width);
    return normals;
}

void check_heights(CaseInput& input, std::int64_t target, Size size, std::string const& what)
{
    auto heights = input.image<float>(size.texels());
    std::vector<float3> normals(heights.size());
    on_target(target, [&] { Height2Normal(heights.data(), normals.data(), size.height, size.width); });
    demand_same(defined(heights, size), normals, what + ", of heights");
}

/// In place: the mean of the colours is the height.
void check_colours(CaseInput& input, std::int64_t target, Size size, std::string const& what)
{
    float const n_scale = input.number();
    auto image = input.image<float3>(size.texels());
    std::vector<float> heights;
    for (float3 const& colour : image) {
        double const sum =
            static_cast<double>(colour.x) + static_cast<double>(colour.y) + static_cast<double>(colour.z);
        heights.push_back(static_cast<float>(sum / 3.0 * static_cast<double>(n_scale)));
    }
    on_target(target, [&] { Height2Normal(image.data(), size.height, size.width, n_scale); });
    demand_same(defined(heights, size), image, words(what, ", of colours, scale ", n_scale));
}

/// Mode 0 of the kernel against the function for one texel, with the kernel's own basis.
void check_light(CaseInput& input, std::int64_t target, Size size, std::string const& what)
{
    auto image = input.image<float3>(size.texels());
    umbrix_options options{};
    options.basis_a = umbrixlib::detail::kBasisA;
    options.basis_b = umbrixlib::detail::kBasisB;
    options.basis_c = umbrixlib::detail::kBasisC;
    std::vector<float3> expected(image.size());
    for (std::size_t i = 0; i < image.size(); ++i) {
        normal2umbrix(image[i], expected[i], options);
    }
    int const shares = input.whole(1, 5);
    on_target(target, [&] {
        for (int share = 0; share < shares; ++share) {
            Normal2Umbrix(image.data(), size.height, size.width, Modes_Projection, share, shares);
        }
    });
    demand_same(expected, image, words(what, ", light in ", shares, " shares"));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t count)
{
    CaseInput input(bytes, count);
    auto const target = input.target();
    int const threads = input.threads();
    Size const size = input.size();
    std::string const what = words("normals of ", size.height, " rows, ", size.width, " columns, ", threads,
                                   " threads, ", hwy::TargetName(target));
    switch (input.whole(0, 3)) {
    case 0:
        check_light(input, target, size, what);
        break;
    case 1:
        check_colours(input, target, size, what);
        break;
    default:
        check_heights(input, target, size, what);
    }
    return 0;
}
