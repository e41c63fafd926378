// SPDX-License-Identifier: MIT
#include "layers/normal_slopes.h"

#include <cstddef>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "layers/normal_slopes.cpp"
#include <hwy/foreach_target.h>

#include "filters/lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace umbrixlib::detail::HWY_NAMESPACE {

using Values = hn::Vec<HalfFloats>;
using Wide = hn::Vec<Doubles>;

constexpr HalfFloats kFloats;
constexpr std::size_t kLanes = hn::MaxLanes(HalfFloats());

/// As many vectors as a register has lanes.
struct Vectors {
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

/// The products are exact in double, so fusing them with their sum changes no bit.
HWY_INLINE Vectors unit(Vectors v)
{
    Wide const x = widened(v.x);
    Wide const y = widened(v.y);
    Wide const z = widened(v.z);
    Values const square = narrowed(hn::MulAdd(z, z, hn::MulAdd(x, x, hn::Mul(y, y))));
    Values const inverse = hn::Div(one(), hn::Sqrt(square));
    return {hn::Mul(v.x, inverse), hn::Mul(v.y, inverse), hn::Mul(v.z, inverse)};
}

/// Above 1 becomes 1, then below 0 becomes 0; NaN stays.
HWY_INLINE Values limited(Values v)
{
    Values const capped = hn::IfThenElse(hn::Gt(v, one()), one(), v);
    return hn::IfThenElse(hn::Lt(capped, hn::Zero(kFloats)), hn::Zero(kFloats), capped);
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

/// What an operation reads and writes; null where it has no use for it.
struct Streams {
    float3* blend;
    float3 const* layer = nullptr;
    float const* blend_heights = nullptr;
    float const* layer_heights = nullptr;
};

template <typename T>
HWY_INLINE T* moved(T* stream, std::size_t by)
{
    return stream == nullptr ? nullptr : stream + by;
}

template <typename T>
HWY_INLINE void copy_rest(T const* stream, std::size_t count, T* rest)
{
    if (stream != nullptr) {
        std::memcpy(rest, stream, count * sizeof(T));
    }
}

/// Runs @p operation on @p count vectors, a register of them at a time; the last few on a copy.
template <typename Operation>
HWY_INLINE void run(Streams streams, std::size_t count, Operation operation)
{
    for (; count >= kLanes; count -= kLanes) {
        operation(streams);
        streams = {streams.blend + kLanes, moved(streams.layer, kLanes), moved(streams.blend_heights, kLanes),
                   moved(streams.layer_heights, kLanes)};
    }
    if (count == 0) {
        return;
    }
    float3 blend[kLanes] = {};
    float3 layer[kLanes] = {};
    float blend_heights[kLanes] = {};
    float layer_heights[kLanes] = {};
    copy_rest(streams.blend, count, blend);
    copy_rest(streams.layer, count, layer);
    copy_rest(streams.blend_heights, count, blend_heights);
    copy_rest(streams.layer_heights, count, layer_heights);
    operation(Streams{blend, layer, blend_heights, layer_heights});
    copy_rest(blend, count, streams.blend);
}

void to_slopes(float3* normals, std::size_t count)
{
    run({normals}, count, [](Streams s) HWY_ATTR { store(slope(load(s.blend)), s.blend); });
}

void to_normals(float3* slopes, std::size_t count)
{
    run({slopes}, count, [](Streams s) HWY_ATTR { store(unit(load(s.blend)), s.blend); });
}

void to_colours(float3 const* normals, float3* colours, std::size_t count)
{
    run({colours, normals}, count, [](Streams s) HWY_ATTR {
        Vectors const v = load(s.layer);
        store({to_colour(v.x), to_colour(v.y), to_colour(v.z)}, s.blend);
    });
}

void from_colours(float3 const* colours, float3* normals, std::size_t count)
{
    run({normals, colours}, count, [](Streams s) HWY_ATTR {
        Vectors const v = load(s.layer);
        store(unit({from_colour(v.x), from_colour(v.y), from_colour(v.z)}), s.blend);
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

void multiply_with(float3* normals, float const* heights, float3 const* layer, float const* layer_heights,
                   float fraction, std::size_t count)
{
    Fade const fade(fraction);
    run({normals, layer, heights, layer_heights}, count, [&](Streams s) HWY_ATTR {
        Vectors const a = slope(load(s.blend));
        Vectors const l = load(s.layer);
        Wide const layer_z = widened(l.z);
        Wide const base = widened(hn::LoadU(kFloats, s.blend_heights));
        Wide const height = widened(hn::LoadU(kFloats, s.layer_heights));
        auto const multiplied = [&](Values blend_slope, Values component) HWY_ATTR {
            Wide const steep = widened(blend_slope);
            Wide const joined = hn::Mul(hn::Div(widened(component), layer_z), base);
            return fade(steep, hn::Add(joined, hn::Mul(height, steep)));
        };
        store(unit({multiplied(a.x, l.x), multiplied(a.y, l.y), a.z}), s.blend);
    });
}

void add_to(float3* normals, float3 const* layer, float fraction, std::size_t count)
{
    Fade const fade(fraction);
    run({normals, layer}, count, [&](Streams s) HWY_ATTR {
        Vectors const a = slope(load(s.blend));
        Vectors const l = load(s.layer);
        Wide const layer_z = widened(l.z);
        auto const added = [&](Values blend_slope, Values component) HWY_ATTR {
            Wide const steep = widened(blend_slope);
            return fade(steep, hn::Add(hn::Div(widened(component), layer_z), steep));
        };
        store(unit({added(a.x, l.x), added(a.y, l.y), a.z}), s.blend);
    });
}

} // namespace umbrixlib::detail::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace umbrixlib::detail {

HWY_EXPORT(to_slopes);
HWY_EXPORT(to_normals);
HWY_EXPORT(to_colours);
HWY_EXPORT(from_colours);
HWY_EXPORT(multiply_with);
HWY_EXPORT(add_to);

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

void multiply_slopes(float3* normals, float const* heights, float3 const* layer, float const* layer_heights,
                     float fraction, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(multiply_with)(normals, heights, layer, layer_heights, fraction, count);
}

void add_slopes(float3* normals, float3 const* layer, float fraction, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(add_to)(normals, layer, fraction, count);
}

} // namespace umbrixlib::detail
#endif
