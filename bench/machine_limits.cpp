// SPDX-License-Identifier: MIT
// What one processor can do at best: bytes copied, comparisons, products and sums, conversions, each a
// second. The loops use the widest instructions that the machine has, as the kernels do. A rate that no
// processor reaches shows that the compiler took a loop apart; the program fails then.
#include "measure/checksum.h"
#include "measure/clocks.h"
#include "measure/processors.h"
#include "measure/record.h"
#include "measure/rounds.h"
#include "measure/work.h"

#include <cstdint>
#include <cstring>
#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

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
Work compare_loop()
{
    return {};
}
Work multiply_add_loop()
{
    return {};
}
Work arithmetic_loop()
{
    return {};
}
Work double_multiply_add_loop()
{
    return {};
}
Work convert_loop()
{
    return {};
}
#else

template <class D, class V>
double sum_of_lanes(D d, V value)
{
    HWY_ALIGN hn::TFromD<D> lanes[HWY_MAX_BYTES / sizeof(hn::TFromD<D>)];
    hn::Store(value, d, lanes);
    double sum = 0.0;
    for (std::size_t i = 0; i < hn::Lanes(d); ++i) {
        sum += static_cast<double>(lanes[i]);
    }
    return sum;
}

/// A number that the compiler does not know, so that it cannot foresee what a loop comes to.
int unknown(int value)
{
    int volatile hidden = value;
    return hidden;
}

/// The inner step of the occlusion kernel on the first level of cache: a height less the climb of the ray,
/// and the larger of it and the next height.
Work compare_loop()
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
    double const result = sum_of_lanes(d, m0) + sum_of_lanes(d, m1) + sum_of_lanes(d, m2) +
                          sum_of_lanes(d, m3) + sum_of_lanes(d, m4) + sum_of_lanes(d, m5) +
                          sum_of_lanes(d, m6) + sum_of_lanes(d, m7);
    return {static_cast<double>(kLoops * 8 * hn::Lanes(d)), hn::Lanes(d), result};
}

/// Eight chains of @p step, enough to hide how long one takes.
template <class D, class Step>
Work chains(D d, std::size_t operations, Step step)
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
    double const result = sum_of_lanes(d, v0) + sum_of_lanes(d, v1) + sum_of_lanes(d, v2) +
                          sum_of_lanes(d, v3) + sum_of_lanes(d, v4) + sum_of_lanes(d, v5) +
                          sum_of_lanes(d, v6) + sum_of_lanes(d, v7);
    return {static_cast<double>(kLoops * 8 * operations * hn::Lanes(d)), hn::Lanes(d), result};
}

/// Fused products and sums of floats, one operation each.
Work multiply_add_loop()
{
    constexpr hn::ScalableTag<float> d;
    auto const half = hn::Set(d, 0.5f * static_cast<float>(unknown(1)));
    return chains(d, 1, [=](auto v) HWY_ATTR { return hn::MulAdd(v, half, half); });
}

/// Products and sums of floats, each rounded, one operation each.
Work arithmetic_loop()
{
    constexpr hn::ScalableTag<float> d;
    auto const half = hn::Set(d, 0.5f * static_cast<float>(unknown(1)));
    return chains(d, 2, [=](auto v) HWY_ATTR { return hn::Add(hn::Mul(v, half), half); });
}

/// The same fused, in double.
Work double_multiply_add_loop()
{
    constexpr hn::ScalableTag<double> d;
    auto const half = hn::Set(d, 0.5 * unknown(1));
    return chains(d, 1, [=](auto v) HWY_ATTR { return hn::MulAdd(v, half, half); });
}

/// From double to float and back, two operations.
Work convert_loop()
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

/// Vector instructions that a processor starts in a cycle at most: four, but two fused products and sums on
/// x86.
constexpr double kPorts = 4.0;
#if HWY_ARCH_X86
constexpr double kFusedPorts = 2.0;
#else
constexpr double kFusedPorts = 4.0;
#endif

struct Loop {
    char const* name;
    double instructions; ///< For one operation.
    double ports;
    double operations = 0.0;
    std::size_t lanes = 1;
    double result = 0.0;

    /// Operations a second that no processor of this clock exceeds.
    double ceiling(double clock) const { return static_cast<double>(lanes) * ports / instructions * clock; }
};

#define UMBRIX_RUN_LOOP(loop, function)                                                                      \
    [&loop] {                                                                                                \
        auto const work = HWY_DYNAMIC_DISPATCH(function)();                                                  \
        loop.operations = work.operations;                                                                   \
        loop.lanes = work.lanes;                                                                             \
        loop.result = work.result;                                                                           \
    }

constexpr std::size_t kCopied = std::size_t{192} << 20;
constexpr int kCycles = 1 << 24;

/// As many additions, each of which needs the one before, and so takes a cycle.
std::uint32_t add_in_turn(int additions)
{
    std::uint32_t sum = 0;
    auto const add = [&sum] {
        sum += 3;
        asm volatile("" : "+r"(sum)); // the compiler does not know what sum is from here on
    };
    for (int i = 0; i < additions; i += 8) {
        add(), add(), add(), add(), add(), add(), add(), add();
    }
    return sum;
}

/// @throws std::runtime_error if @p rate is above @p ceiling
double believable(std::string const& name, double rate, double ceiling)
{
    if (!(rate <= ceiling)) {
        std::ostringstream text;
        text << name << ": " << rate << " a second; no processor does more than " << ceiling
             << " at this clock";
        throw std::runtime_error(text.str());
    }
    return rate;
}

void measure(Effort const& effort)
{
    auto const from = std::make_unique<unsigned char[]>(kCopied);
    auto const to = std::make_unique<unsigned char[]>(kCopied);
    for (std::size_t i = 0; i < kCopied; i += 4096) {
        from[i] = static_cast<unsigned char>(i >> 12);
    }
    std::uint32_t sum = 0;
    Loop compare = {"compares", 2, kPorts};
    Loop multiply_add = {"float_multiply_adds", 1, kFusedPorts};
    Loop arithmetic = {"float_operations", 1, kPorts};
    Loop double_multiply_add = {"double_multiply_adds", 1, kFusedPorts};
    Loop convert = {"conversions", 1, kPorts};
    Seconds const seconds = interleaved(
        {
            {"clock", [&] { sum = add_in_turn(kCycles); }},
            {"copied_bytes", [&] { std::memcpy(to.get(), from.get(), kCopied); }},
            {compare.name, UMBRIX_RUN_LOOP(compare, compare_loop)},
            {multiply_add.name, UMBRIX_RUN_LOOP(multiply_add, multiply_add_loop)},
            {arithmetic.name, UMBRIX_RUN_LOOP(arithmetic, arithmetic_loop)},
            {double_multiply_add.name, UMBRIX_RUN_LOOP(double_multiply_add, double_multiply_add_loop)},
            {convert.name, UMBRIX_RUN_LOOP(convert, convert_loop)},
        },
        effort, cpu_seconds);
    double const clock = kCycles / seconds.at("clock");
    // A slow moment of the clock's loop is no reason to doubt the others.
    double const most_clock = 1.25 * clock;
    Record record = {{"what", "limits"},
                     {"instructions", HWY_DYNAMIC_DISPATCH(target_name)()},
                     {"clock", clock},
                     {"clock_sum", sum}};
    // Each byte counts twice; at best a processor stores two vectors a cycle.
    double const copied = 2.0 * static_cast<double>(kCopied);
    record["per_second"]["copied_bytes"] =
        believable("copied_bytes", copied / seconds.at("copied_bytes"), 4.0 * HWY_MAX_BYTES * most_clock);
    record["results"]["copied_bytes"] = checksum(to.get(), kCopied);
    for (Loop const* const loop : {&compare, &multiply_add, &arithmetic, &double_multiply_add, &convert}) {
        record["per_second"][loop->name] =
            believable(loop->name, loop->operations / seconds.at(loop->name), loop->ceiling(most_clock));
        record["results"][loop->name] = loop->result;
    }
    print(record);
}

} // namespace

} // namespace umbrixlib::bench

int main(int count, char** words)
{
    umbrixlib::bench::keep_to_processors(1, words);
    try {
        umbrixlib::bench::measure(umbrixlib::bench::effort_of(count, words));
    } catch (std::runtime_error const& error) {
        std::cerr << "machine_limits: " << error.what() << '\n';
        return 1;
    }
}
#endif
