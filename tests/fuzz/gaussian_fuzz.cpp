// SPDX-License-Identifier: MIT
// The recursive Gaussian of float, float3 and float4 against its lines one after the other.
#include "case_input.h"
#include "demand.h"
#include "recursive_gaussian_reference.h"

#include <umbrixlib.h>

namespace {

using umbrixlib::fuzz::CaseInput;
using umbrixlib::fuzz::demand_same;
using umbrixlib::fuzz::Size;
using umbrixlib::test::on_target;
namespace reference = umbrixlib::test::reference;

template <typename Pixel>
void check_filter(CaseInput& input, std::int64_t target, Size size, std::string const& what)
{
    float const sigma = input.number() * (input.flag() ? 10.0f : 1.0f);
    bool const in_place = input.flag();
    auto source = input.image<Pixel>(size.texels());
    auto const before = source;
    std::vector<Pixel> result(source.size());
    std::vector<Pixel> scratch(source.size());
    on_target(target, [&] {
        gaussianFilterRGBA(source.data(), in_place ? source.data() : result.data(), scratch.data(),
                           size.width, size.height, sigma);
    });
    std::string const named = umbrixlib::fuzz::words(what, ", sigma ", sigma, in_place ? ", in place" : "");
    demand_same(reference::gaussian(before, size.width, size.height, sigma), in_place ? source : result,
                named);
    if (!in_place) {
        demand_same(before, source, named + ", the source");
    }
}

/// One of the passes with coefficients of any kind, as a whole or in shares.
template <typename Pixel>
void check_pass(CaseInput& input, std::int64_t target, Size size, std::string const& what)
{
    reference::Coefficients c = reference::gaussian_coefficients(input.number());
    if (input.flag()) {
        for (float* each : {&c.a0, &c.a1, &c.a2, &c.a3, &c.b1, &c.b2}) {
            *each = input.number();
        }
    }
    bool const columns = input.flag();
    int const shares = input.whole(0, 4); // 0: the form without shares
    auto source = input.image<Pixel>(size.texels());
    std::vector<Pixel> expected(source.size());
    (columns ? reference::gaussian_columns<Pixel>
             : reference::gaussian_rows<Pixel>)(source.data(), expected.data(), size.width, size.height, c);
    std::vector<Pixel> result(source.size());
    auto const pass = [&](auto... share) {
        if (columns) {
            recursiveGaussian_rgba(source.data(), result.data(), size.width, size.height, c.a0, c.a1, c.a2,
                                   c.a3, c.b1, c.b2, c.edge_forward, c.edge_backward, share...);
        } else {
            recursiveGaussianY_rgba(source.data(), result.data(), size.width, size.height, c.a0, c.a1, c.a2,
                                    c.a3, c.b1, c.b2, c.edge_forward, c.edge_backward, share...);
        }
    };
    on_target(target, [&] {
        if (shares == 0) {
            pass();
        }
        for (int share = 0; share < shares; ++share) {
            pass(share, shares);
        }
    });
    demand_same(expected, result,
                umbrixlib::fuzz::words(what, columns ? ", columns" : ", rows", " in ", shares, " shares"));
}

template <typename Pixel>
void check(CaseInput& input, std::int64_t target, Size size, std::string const& what)
{
    if (input.flag()) {
        check_pass<Pixel>(input, target, size, what);
    } else {
        check_filter<Pixel>(input, target, size, what);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t count)
{
    CaseInput input(bytes, count);
    auto const target = input.target();
    int const threads = input.threads();
    Size const size = input.size();
    int const components = input.whole(0, 2);
    std::string const what =
        umbrixlib::fuzz::words("Gaussian of ", size.width, " x ", size.height, ", ", threads, " threads, ",
                               hwy::TargetName(target), ", pixels of kind ", components);
    switch (components) {
    case 0:
        check<float>(input, target, size, what);
        break;
    case 1:
        check<float3>(input, target, size, what);
        break;
    default:
        check<float4>(input, target, size, what);
    }
    return 0;
}
