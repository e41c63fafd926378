// SPDX-License-Identifier: MIT
#include "layers/normal_slopes.h"

#include "common/vector_targets.h"

#include <cstddef>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "layers/normal_slopes.cpp"
#include <hwy/foreach_target.h>

#include "common/lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace umbrixlib::detail::HWY_NAMESPACE {
namespace {

using Values = hn::Vec<HalfFloats>;
using Wide = hn::Vec<Doubles>;

constexpr HalfFloats kFloats;
constexpr std::size_t kLanes = hn::MaxLanes(HalfFloats());

/// As many vectors as a register has lanes. g++ makes implicit constructors for the processor at large, which
/// cannot take those of the registers in.
struct Vectors {
    HWY_INLINE Vectors() {}
    HWY_INLINE Vectors(Values all_x, Values all_y, Values all_z) : x(all_x), y(all_y), z(all_z) {}

    Values x, y, z;
};

HWY_INLINE Vectors load(float3 const* from)
{
    Vectors v;
    hn::LoadInterleaved3(kFloats, reinterpret_cast<float const*>(from), v.x, v.y, v.z);
    return v;
}

HWY_INLINE void store(Vectors v, float3* to)
{
    hn::StoreInterleaved3(v.x, v.y, v.z, kFloats, reinterpret_cast<float*>(to));
}

HWY_INLINE Values one()
{
    return hn::Set(kFloats, 1.0f);
}

// A quotient, product, sum or root of floats, formed in double and rounded once, is that of the float
// operation.

HWY_INLINE Vectors slope(Vectors v)
{
    return {hn::Div(v.x, v.z), hn::Div(v.y, v.z), one()};
}

/// Registers of vectors that go through an operation side by side, a stage of it after the other: what waits
/// for a root or a quotient is then more than the processor can look ahead by itself.
constexpr int kSideBySide = 4;

/// The products are exact in double, so fusing them with their sum changes no bit.
HWY_INLINE Values square_of(Vectors v)
{
    Wide const x = widened(v.x);
    Wide const y = widened(v.y);
    Wide const z = widened(v.z);
    return narrowed(hn::MulAdd(z, z, hn::MulAdd(x, x, hn::Mul(y, y))));
}

template <int kCount>
HWY_INLINE void make_unit(Vectors (&vectors)[kCount])
{
    Values inverse[kCount];
    HWY_UNROLL(4)
    for (int v = 0; v < kCount; ++v) {
        inverse[v] = square_of(vectors[v]);
    }
    HWY_UNROLL(4)
    for (int v = 0; v < kCount; ++v) {
        inverse[v] = hn::Sqrt(inverse[v]);
    }
    HWY_UNROLL(4)
    for (int v = 0; v < kCount; ++v) {
        inverse[v] = hn::Div(one(), inverse[v]);
    }
    HWY_UNROLL(4)
    for (int v = 0; v < kCount; ++v) {
        vectors[v] = {hn::Mul(vectors[v].x, inverse[v]), hn::Mul(vectors[v].y, inverse[v]),
                      hn::Mul(vectors[v].z, inverse[v])};
    }
}

/// Above 1 becomes 1, then below 0 becomes 0; NaN stays.
HWY_INLINE Values limited(Values v)
{
#if HWY_ARCH_X86 && HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128
    // These give the second operand if either is not a number or both are zeros.
    return hn::Max(hn::Zero(kFloats), hn::Min(one(), v));
#else
    Values const capped = hn::IfThenElse(hn::Gt(v, one()), one(), v);
    return hn::IfThenElse(hn::Lt(capped, hn::Zero(kFloats)), hn::Zero(kFloats), capped);
#endif
}

HWY_INLINE Values to_colour(Values component)
{
    return limited(hn::Mul(hn::Add(component, one()), hn::Set(kFloats, 0.5f)));
}

HWY_INLINE Values from_colour(Values colour)
{
    Values const c = limited(colour);
    return hn::Sub(hn::Add(c, c), one());
}

/// Lets @p operation change registers of vectors in place, and writes what it makes of @p count vectors of @p
/// from to @p to, which may be the same; the last few by way of a copy.
template <typename Operation>
HWY_INLINE void run(float3 const* from, float3* to, std::size_t count, Operation operation)
{
    constexpr std::size_t kWidth = kSideBySide * kLanes;
    for (; count >= kWidth; count -= kWidth, from += kWidth, to += kWidth) {
        Vectors vectors[kSideBySide];
        HWY_UNROLL(4)
        for (int v = 0; v < kSideBySide; ++v) {
            vectors[v] = load(from + v * kLanes);
        }
        operation(vectors);
        HWY_UNROLL(4)
        for (int v = 0; v < kSideBySide; ++v) {
            store(vectors[v], to + v * kLanes);
        }
    }
    for (; count != 0; from += kLanes, to += kLanes) {
        std::size_t const some = HWY_MIN(kLanes, count);
        float3 rest[kLanes] = {};
        std::memcpy(rest, from, some * sizeof(float3));
        Vectors vectors[1] = {load(rest)};
        operation(vectors);
        store(vectors[0], rest);
        std::memcpy(to, rest, some * sizeof(float3));
        count -= some;
    }
}

/// The same for single components, whichever they are.
template <typename Operation>
HWY_INLINE void run_components(float3 const* from, float3* to, std::size_t count, Operation operation)
{
    auto const* in = reinterpret_cast<float const*>(from);
    auto* out = reinterpret_cast<float*>(to);
    std::size_t left = 3 * count;
    for (; left >= kLanes; left -= kLanes, in += kLanes, out += kLanes) {
        hn::StoreU(operation(hn::LoadU(kFloats, in)), kFloats, out);
    }
    if (left != 0) {
        float rest[kLanes] = {};
        std::memcpy(rest, in, left * sizeof(float));
        hn::StoreU(operation(hn::LoadU(kFloats, rest)), kFloats, rest);
        std::memcpy(out, rest, left * sizeof(float));
    }
}

void to_slopes(float3* normals, std::size_t count)
{
    run(normals, normals, count, [](auto& vectors) HWY_ATTR {
        for (Vectors& v : vectors) {
            v = slope(v);
        }
    });
}

void to_normals(float3* slopes, std::size_t count)
{
    run(slopes, slopes, count, [](auto& vectors) HWY_ATTR { make_unit(vectors); });
}

void to_colours(float3 const* normals, float3* colours, std::size_t count)
{
    run_components(normals, colours, count, [](Values v) HWY_ATTR { return to_colour(v); });
}

void from_colours(float3 const* colours, float3* normals, std::size_t count)
{
    run(colours, normals, count, [](auto& vectors) HWY_ATTR {
        for (Vectors& v : vectors) {
            v = {from_colour(v.x), from_colour(v.y), from_colour(v.z)};
        }
        make_unit(vectors);
    });
}

/// Cross-fades from a to a second value at @p fraction. Its products have a factor that is no float: not
/// fused.
class Fade {
public:
    explicit HWY_INLINE Fade(float fraction)
        : fraction_(hn::Set(Doubles(), static_cast<double>(fraction))),
          rest_(hn::Set(Doubles(), 1.0 - static_cast<double>(fraction)))
    {
    }

    HWY_INLINE Values operator()(Wide a, Wide second) const
    {
        return narrowed(hn::Add(hn::Mul(second, fraction_), hn::Mul(a, rest_)));
    }

private:
    Wide fraction_, rest_;
};

/// x / z and y / z of floats, in double.
struct Quotients {
    Wide x, y;
};

#if HWY_NATIVE_FMA
/// The quotient of @p a and @p b, of which @p inverse is the reciprocal as rounded. `guess` is off by two
/// units in the last place at most, so `rest` is what it lacks, times b, to the bit: 77 bits hold the product
/// of a float and a double, and the uppermost of them cancel. With the correction the value is off by 2^-103
/// of itself before it is rounded. A quotient of two floats is no nearer than 2^-78 of itself to the middle
/// of two doubles, so it is rounded as the exact one is. No step leaves the range of double. Zeros,
/// infinities and what is not a number need no correction: `rest` is 0 or not a number.
HWY_INLINE Wide quotient(Wide a, Wide b, Wide inverse)
{
    constexpr Doubles d;
    Wide const guess = hn::Mul(a, inverse);
    Wide const rest = hn::NegMulAdd(b, guess, a);
    return hn::IfThenElse(hn::Gt(hn::Abs(rest), hn::Zero(d)), hn::MulAdd(rest, inverse, guess), guess);
}

HWY_INLINE Quotients wide_slope(Vectors v)
{
    Wide const z = widened(v.z);
    Wide const inverse = hn::Div(hn::Set(Doubles(), 1.0), z);
    return {quotient(widened(v.x), z, inverse), quotient(widened(v.y), z, inverse)};
}
#else
HWY_INLINE Quotients wide_slope(Vectors v)
{
    Wide const z = widened(v.z);
    return {hn::Div(widened(v.x), z), hn::Div(widened(v.y), z)};
}
#endif

/// The first @p count vectors or heights, of a register of them if @p kWhole.
template <bool kWhole>
HWY_INLINE Vectors load_some(float3 const* from, std::size_t count)
{
    if constexpr (kWhole) {
        return load(from);
    }
    float3 copy[kLanes] = {};
    std::memcpy(copy, from, count * sizeof(float3));
    return load(copy);
}

template <bool kWhole>
HWY_INLINE Values load_some(float const* from, std::size_t count)
{
    if constexpr (kWhole) {
        return hn::LoadU(kFloats, from);
    }
    float copy[kLanes] = {};
    std::memcpy(copy, from, count * sizeof(float));
    return hn::LoadU(kFloats, copy);
}

/// Takes registers of vectors through a step. The last holds @p count vectors.
template <bool kWhole, int kCount>
HWY_INLINE void join(SlopeStep const& step, Vectors (&blend)[kCount], float const* heights, std::ptrdiff_t at,
                     std::size_t count)
{
    Fade const fade(step.fraction);
    HWY_UNROLL(4)
    for (int v = 0; v < kCount; ++v) {
        std::ptrdiff_t const here = at + v * static_cast<std::ptrdiff_t>(kLanes);
        Vectors const a = slope(blend[v]);
        Wide const a_x = widened(a.x);
        Wide const a_y = widened(a.y);
        Quotients const l = wide_slope(load_some<kWhole>(step.layer + here, count));
        Wide other_x, other_y;
        if (step.layer_heights == nullptr) {
            other_x = hn::Add(l.x, a_x);
            other_y = hn::Add(l.y, a_y);
        } else {
            Wide const base = widened(load_some<kWhole>(heights + here, count));
            Wide const height = widened(load_some<kWhole>(step.layer_heights + here, count));
            // The first product has a factor that is no float; fusing the second changes no bit.
            other_x = hn::MulAdd(height, a_x, hn::Mul(l.x, base));
            other_y = hn::MulAdd(height, a_y, hn::Mul(l.y, base));
        }
        blend[v] = {fade(a_x, other_x), fade(a_y, other_y), a.z};
    }
    make_unit(blend);
}

void join_all(SlopeStep const* steps, std::size_t step_count, float3 const* from, float const* heights,
              float3* to, std::ptrdiff_t at, std::size_t count)
{
    constexpr std::size_t kWidth = kSideBySide * kLanes;
    SlopeStep const* const end = steps + step_count;
    for (; count >= kWidth; count -= kWidth, at += kWidth) {
        run(from + at, to + at, kWidth, [&](auto& vectors) HWY_ATTR {
            for (SlopeStep const* step = steps; step != end; ++step) {
                join<true>(*step, vectors, heights, at, kLanes);
            }
        });
    }
    for (; count != 0; at += kLanes) {
        std::size_t const some = HWY_MIN(kLanes, count);
        run(from + at, to + at, some, [&](auto& vectors) HWY_ATTR {
            for (SlopeStep const* step = steps; step != end; ++step) {
                join<false>(*step, vectors, heights, at, some);
            }
        });
        count -= some;
    }
}

} // namespace
} // namespace umbrixlib::detail::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace umbrixlib::detail {

HWY_EXPORT(to_slopes);
HWY_EXPORT(to_normals);
HWY_EXPORT(to_colours);
HWY_EXPORT(from_colours);
HWY_EXPORT(join_all);

void normals_to_slopes(float3* normals, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(to_slopes)(normals, count);
}

void slopes_to_normals(float3* slopes, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(to_normals)(slopes, count);
}

void normals_to_colours(float3 const* normals, float3* colours, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(to_colours)(normals, colours, count);
}

void colours_to_normals(float3 const* colours, float3* normals, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(from_colours)(colours, normals, count);
}

void join_slopes(SlopeStep const* steps, std::size_t step_count, float3 const* from, float const* heights,
                 float3* to, std::ptrdiff_t at, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(join_all)(steps, step_count, from, heights, to, at, count);
}

} // namespace umbrixlib::detail
#endif
