// SPDX-License-Identifier: MIT
// What one processor can do at best: bytes copied, comparisons, products and sums, conversions, each a
// second. The loops use the widest instructions that the machine has, as the kernels do.
#include "measure/clocks.h"
#include "measure/processors.h"
#include "measure/record.h"
#include "measure/rounds.h"

#include <cstring>
#include <memory>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "machine_limits.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace umbrixlib::bench::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

constexpr std::size_t kLoops = 1 << 20;

#if HWY_TARGET == HWY_SCALAR
double compare_loop()
{
    return 0.0;
}
double multiply_add_loop()
{
    return 0.0;
}
double arithmetic_loop()
{
    return 0.0;
}
double double_multiply_add_loop()
{
    return 0.0;
}
double convert_loop()
{
    return 0.0;
}
#else

/// Keeps the values of the loops, and with them the loops.
template <class D, class V>
void keep(D d, V value)
{
    HWY_ALIGN static hn::TFromD<D> kept[HWY_MAX_BYTES / sizeof(hn::TFromD<D>)];
    hn::Store(value, d, kept);
}

/// A number that the compiler does not know, so that it cannot foresee what a loop comes to.
int unknown(int value)
{
    int volatile hidden = value;
    return hidden;
}

/// The inner step of the occlusion kernel on the first level of cache: a height less the climb of the ray,
/// and the larger of it and the next height.
double compare_loop()
{
    constexpr hn::ScalableTag<std::uint16_t> d;
    constexpr std::size_t kLanes = hn::MaxLanes(d);
    HWY_ALIGN std::uint16_t heights[8 * kLanes];
    for (std::size_t i = 0; i < 8 * kLanes; ++i) {
        heights[i] = static_cast<std::uint16_t>(unknown(static_cast<int>(i)));
    }
    auto const climb = hn::Set(d, static_cast<std::uint16_t>(unknown(1)));
    auto const first = [=](int value)
                           HWY_ATTR { return hn::Set(d, static_cast<std::uint16_t>(unknown(value))); };
    auto m0 = first(60000), m1 = first(60001), m2 = first(60002), m3 = first(60003);
    auto m4 = first(60004), m5 = first(60005), m6 = first(60006), m7 = first(60007);
    for (std::size_t i = 0; i < kLoops; ++i) {
        HWY_FENCE;
        m0 = hn::Max(hn::SaturatedSub(m0, climb), hn::Load(d, heights));
        m1 = hn::Max(hn::SaturatedSub(m1, climb), hn::Load(d, heights + kLanes));
        m2 = hn::Max(hn::SaturatedSub(m2, climb), hn::Load(d, heights + 2 * kLanes));
        m3 = hn::Max(hn::SaturatedSub(m3, climb), hn::Load(d, heights + 3 * kLanes));
        m4 = hn::Max(hn::SaturatedSub(m4, climb), hn::Load(d, heights + 4 * kLanes));
        m5 = hn::Max(hn::SaturatedSub(m5, climb), hn::Load(d, heights + 5 * kLanes));
        m6 = hn::Max(hn::SaturatedSub(m6, climb), hn::Load(d, heights + 6 * kLanes));
        m7 = hn::Max(hn::SaturatedSub(m7, climb), hn::Load(d, heights + 7 * kLanes));
    }
    keep(d, hn::Max(hn::Max(hn::Max(m0, m1), hn::Max(m2, m3)), hn::Max(hn::Max(m4, m5), hn::Max(m6, m7))));
    return static_cast<double>(kLoops * 8 * hn::Lanes(d));
}

/// Eight chains of @p step, enough to hide how long one takes.
template <class D, class Step>
double chains(D d, std::size_t operations, Step step)
{
    auto const first = [=](int value)
                           HWY_ATTR { return hn::Set(d, static_cast<hn::TFromD<D>>(unknown(value))); };
    auto v0 = first(2), v1 = first(3), v2 = first(4), v3 = first(5);
    auto v4 = first(6), v5 = first(7), v6 = first(8), v7 = first(9);
    for (std::size_t i = 0; i < kLoops; ++i) {
        HWY_FENCE;
        v0 = step(v0), v1 = step(v1), v2 = step(v2), v3 = step(v3);
        v4 = step(v4), v5 = step(v5), v6 = step(v6), v7 = step(v7);
    }
    keep(d, hn::Max(hn::Max(hn::Max(v0, v1), hn::Max(v2, v3)), hn::Max(hn::Max(v4, v5), hn::Max(v6, v7))));
    return static_cast<double>(kLoops * 8 * operations * hn::Lanes(d));
}

/// Fused products and sums of floats, one operation each.
double multiply_add_loop()
{
    constexpr hn::ScalableTag<float> d;
    auto const half = hn::Set(d, 0.5f * static_cast<float>(unknown(1)));
    return chains(d, 1, [=](auto v) HWY_ATTR { return hn::MulAdd(v, half, half); });
}

/// Products and sums of floats, each rounded, one operation each.
double arithmetic_loop()
{
    constexpr hn::ScalableTag<float> d;
    auto const half = hn::Set(d, 0.5f * static_cast<float>(unknown(1)));
    return chains(d, 2, [=](auto v) HWY_ATTR { return hn::Add(hn::Mul(v, half), half); });
}

/// The same fused, in double.
double double_multiply_add_loop()
{
    constexpr hn::ScalableTag<double> d;
    auto const half = hn::Set(d, 0.5 * unknown(1));
    return chains(d, 1, [=](auto v) HWY_ATTR { return hn::MulAdd(v, half, half); });
}

/// From double to float and back, two operations.
double convert_loop()
{
    constexpr hn::ScalableTag<double> wide;
    constexpr hn::Rebind<float, decltype(wide)> d;
    return chains(wide, 2, [=](auto v) HWY_ATTR { return hn::PromoteTo(wide, hn::DemoteTo(d, v)); });
}
#endif

char const* target_name()
{
    return hwy::TargetName(HWY_TARGET);
}

} // namespace
} // namespace umbrixlib::bench::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace umbrixlib::bench {

HWY_EXPORT(compare_loop);
HWY_EXPORT(multiply_add_loop);
HWY_EXPORT(arithmetic_loop);
HWY_EXPORT(double_multiply_add_loop);
HWY_EXPORT(convert_loop);
HWY_EXPORT(target_name);

namespace {

/// Operations in a run, and runs that are timed.
struct Loop {
    char const* name;
    double (*run)();
};

constexpr std::size_t kCopied = std::size_t{192} << 20;

void measure(Effort const& effort)
{
    auto const from = std::make_unique<char[]>(kCopied);
    auto const to = std::make_unique<char[]>(kCopied);
    Loop const loops[] = {
        {"compares", [] { return HWY_DYNAMIC_DISPATCH(compare_loop)(); }},
        {"float_multiply_adds", [] { return HWY_DYNAMIC_DISPATCH(multiply_add_loop)(); }},
        {"float_operations", [] { return HWY_DYNAMIC_DISPATCH(arithmetic_loop)(); }},
        {"double_multiply_adds", [] { return HWY_DYNAMIC_DISPATCH(double_multiply_add_loop)(); }},
        {"conversions", [] { return HWY_DYNAMIC_DISPATCH(convert_loop)(); }},
    };
    std::vector<Contender> contenders = {
        {"copied_bytes", [&] { std::memcpy(to.get(), from.get(), kCopied); }}};
    std::map<std::string, double> operations = {{"copied_bytes", 2.0 * static_cast<double>(kCopied)}};
    for (Loop const& loop : loops) {
        contenders.push_back({loop.name, [&operations, loop] { operations[loop.name] = loop.run(); }});
    }
    Seconds const seconds = interleaved(contenders, effort, cpu_seconds);
    Record record = {{"what", "limits"}, {"instructions", HWY_DYNAMIC_DISPATCH(target_name)()}};
    for (auto const& [name, spent] : seconds) {
        record["per_second"][name] = operations[name] / spent;
    }
    print(record);
}

} // namespace

} // namespace umbrixlib::bench

int main(int count, char** words)
{
    umbrixlib::bench::keep_to_processors(1, words);
    umbrixlib::bench::measure(umbrixlib::bench::effort_of(count, words));
}
#endif
