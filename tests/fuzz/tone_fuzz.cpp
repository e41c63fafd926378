// SPDX-License-Identifier: MIT
// The tone operators, each by itself, in shares and in the chains of the pipelines, against their
// definitions.
#include "case_input.h"
#include "demand.h"
#include "recursive_gaussian_reference.h"
#include "tone_reference.h"

#include <umbrixlib.h>

namespace {

using umbrixlib::fuzz::CaseInput;
using umbrixlib::fuzz::demand;
using umbrixlib::fuzz::demand_same;
using umbrixlib::fuzz::Size;
using umbrixlib::fuzz::words;
using umbrixlib::test::on_target;
namespace reference = umbrixlib::test::reference;

/// An operator as a whole, or in shares of which one may be missing.
template <typename Pixel, typename Expected, typename Actual>
void check_operator(CaseInput& input, std::int64_t target, Size size, std::string const& what,
                    Expected expected_call, Actual actual_call)
{
    auto image = input.image<Pixel>(size.texels());
    auto expected = image;
    int const shares = input.whole(0, 5); // 0: the form without shares
    int const missing = input.whole(0, 5);
    if (shares == 0) {
        expected_call(expected.data(), 0, 1);
        on_target(target, [&] { actual_call(image.data()); });
    }
    for (int share = 0; share < shares; ++share) {
        if (share != missing) {
            expected_call(expected.data(), share, shares);
            on_target(target, [&] { actual_call(image.data(), share, shares); });
        }
    }
    demand_same(expected, image, words(what, ", in ", shares, " shares"));
}

template <typename Pixel>
void check_brighten(CaseInput& input, std::int64_t target, Size size, std::string const& what)
{
    float const amount = input.number();
    // On floats it reaches as many elements as there are rows, however wide they are.
    check_operator<Pixel>(
        input, target, size, words(what, ", brighten ", amount),
        [&](Pixel* p, int share, int shares) {
            reference::brighten(p, size.height, size.width, amount, share, shares);
        },
        [&](Pixel* p, auto... share) { brighten(p, size.height, size.width, amount, share...); });
}

template <typename Pixel>
void check_contrast(CaseInput& input, std::int64_t target, Size size, std::string const& what)
{
    float const amount = input.number();
    check_operator<Pixel>(
        input, target, size, words(what, ", contrast ", amount),
        [&](Pixel* p, int share, int shares) {
            reference::change_contrast(p, size.height, size.width, amount, share, shares);
        },
        [&](Pixel* p, auto... share) { change_contrast(p, size.height, size.width, amount, share...); });
}

template <typename Pixel>
void check_limits(CaseInput& input, std::int64_t target, Size size, std::string const& what)
{
    int const low = input.whole(0, 299) - 20;
    int const high = input.whole(0, 299) - 20;
    check_operator<Pixel>(
        input, target, size, words(what, ", limits ", low, " and ", high),
        [&](Pixel* p, int share, int shares) {
            reference::limit_color(p, size.height, size.width, low, high, share, shares);
        },
        [&](Pixel* p, auto... share) { limit_color(p, size.height, size.width, low, high, share...); });
}

template <typename Pixel>
void check_posterize(CaseInput& input, std::int64_t target, Size size, std::string const& what)
{
    float const step = input.number() * (input.flag() ? 32.0f : 1.0f);
    auto image = input.image<Pixel>(size.texels());
    auto expected = image;
    reference::posterize(expected.data(), step, size.height, size.width);
    on_target(target, [&] { posterize(image.data(), step, size.height, size.width, 0, 0); });
    demand_same(expected, image, words(what, ", posterize ", step));
}

template <typename Pixel>
void check_smooth(CaseInput& input, std::int64_t target, Size size, std::string const& what)
{
    int const passes = input.whole(0, 2) * 2; // an odd number releases the buffer
    auto const image = input.image<Pixel>(size.texels());
    auto expected = image;
    for (int pass = 0; pass < passes; ++pass) {
        expected = reference::smooth(expected, size.height, size.width);
    }
    auto actual = image;
    on_target(target, [&] { smooth(actual.data(), size.height, size.width, passes); });
    demand_same(expected, actual, words(what, ", smooth ", passes));
}

/// `PreProcess` on float, `PostProcess` on the others.
template <typename Pixel>
void check_chain(CaseInput& input, std::int64_t target, Size size, std::string const& what)
{
    omp_set_num_threads(omp_get_num_procs()); // the team has to be that of the machine
    umbrix_options options{};
    unsigned const skipped = input.byte();
    auto const unless = [&](unsigned step, float value) { return (skipped & step) != 0 ? 0.0f : value; };
    options.contrast = options.h_contrast = unless(1, input.number());
    options.brightness = options.h_brightness = unless(2, input.number());
    options.smooth = options.h_smooth = unless(4, input.number());
    options.min = options.h_min = static_cast<unsigned char>((skipped & 8U) != 0 ? 0 : input.byte());
    options.max = options.h_max = static_cast<unsigned char>((skipped & 8U) != 0 ? 255 : input.byte());
    auto image = input.image<Pixel>(size.texels());
    auto expected = image;
    if (options.contrast != 0.0f) {
        reference::change_contrast(expected.data(), size.height, size.width, options.contrast);
    }
    if (options.min != 0 || options.max < 255) {
        reference::limit_color(expected.data(), size.height, size.width, options.min, options.max);
    }
    if (options.brightness != 0.0f) {
        reference::brighten(expected.data(), size.height, size.width, options.brightness);
    }
    if (options.smooth != 0.0f) {
        expected = reference::gaussian(expected, size.width, size.height, options.smooth);
    }
    on_target(target, [&] {
        if constexpr (std::is_same_v<Pixel, float>) {
            demand(PreProcess(image.data(), size.height, size.width, options), "PreProcess says false");
        } else {
            demand(PostProcess(image.data(), size.height, size.width, options), "PostProcess says false");
        }
    });
    demand_same(expected, image,
                words(what, ", chain of contrast ", options.contrast, ", limits ", +options.min, " and ",
                      +options.max, ", brightness ", options.brightness, ", sigma ", options.smooth));
}

template <typename Pixel>
void check(CaseInput& input, std::int64_t target, Size size, std::string const& what)
{
    using Check = void (*)(CaseInput&, std::int64_t, Size, std::string const&);
    constexpr Check kChecks[] = {check_brighten<Pixel>,  check_contrast<Pixel>, check_limits<Pixel>,
                                 check_posterize<Pixel>, check_smooth<Pixel>,   check_chain<Pixel>};
    kChecks[input.whole(0, static_cast<int>(std::size(kChecks)) - 1)](input, target, size, what);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t count)
{
    CaseInput input(bytes, count);
    auto const target = input.target();
    int const threads = input.threads();
    Size const size = input.size();
    int const components = input.whole(0, 2);
    std::string const what = words("tones of ", size.height, " rows, ", size.width, " columns, ", threads,
                                   " threads, ", hwy::TargetName(target), ", pixels of kind ", components);
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
