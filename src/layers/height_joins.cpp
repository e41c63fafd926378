// SPDX-License-Identifier: MIT
#include "layers/height_joins.h"

#include "common/vector_targets.h"

#include <cstddef>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "layers/height_joins.cpp"
#include <hwy/foreach_target.h>

#include "common/lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace umbrixlib::detail::HWY_NAMESPACE {
namespace {

using Values = hn::Vec<HalfFloats>;
using Wide = hn::Vec<Doubles>;

constexpr HalfFloats kFloats;

HWY_INLINE Wide one()
{
    return hn::Set(Doubles(), 1.0);
}

// What a blend fades to when a layer joins; `l` and `b` are their heights in double. Products whose factors
// are not both floats are not fused with their sum. A product of two floats, formed in double and rounded
// once, is that of the float operation.

struct Layer {
    HWY_INLINE Wide operator()(Values layer, Values /*blend*/, Wide /*b*/) const { return widened(layer); }
};

struct Overlay {
    HWY_INLINE Wide operator()(Values layer, Values blend, Wide b) const
    {
        Wide const rest = hn::Sub(one(), b);
        Wide const screen = widened(narrowed(hn::Sub(one(), hn::Mul(hn::Sub(one(), widened(layer)), rest))));
        Wide const product = widened(hn::Mul(layer, blend));
        return widened(narrowed(hn::Add(hn::Mul(screen, b), hn::Mul(product, rest))));
    }
};

struct Product {
    HWY_INLINE Wide operator()(Values layer, Values /*blend*/, Wide b) const
    {
        return hn::Mul(widened(layer), b);
    }
};

struct Sum {
    HWY_INLINE Wide operator()(Values layer, Values /*blend*/, Wide b) const
    {
        return hn::Add(widened(layer), b);
    }
};

/// Runs @p operation, which gives the new blend for (layer, blend), on all heights.
template <typename Operation>
HWY_INLINE void run(float* blend, float const* layer, std::size_t count, Operation operation)
{
    by_registers<kHalfLanes>(
        blend, layer, blend, count, [&](float const* b, float const* l, float* to) HWY_ATTR {
            hn::StoreU(operation(hn::LoadU(kFloats, l), hn::LoadU(kFloats, b)), kFloats, to);
        });
}

template <typename Second>
HWY_INLINE void fade(float* blend, float const* layer, float scale, float fraction, std::size_t count)
{
    Values const factor = hn::Set(kFloats, scale);
    Wide const part = hn::Set(Doubles(), static_cast<double>(fraction));
    Wide const rest = hn::Set(Doubles(), 1.0 - static_cast<double>(fraction));
    run(blend, layer, count, [&](Values l, Values b) HWY_ATTR {
        Wide const wide_blend = widened(b);
        Wide const second = Second()(hn::Mul(l, factor), b, wide_blend);
        return narrowed(hn::Add(hn::Mul(second, part), hn::Mul(wide_blend, rest)));
    });
}

void start(float* blend, float const* layer, float scale, std::size_t count)
{
    Values const factor = hn::Set(kFloats, scale);
    std::size_t i = 0;
    for (; i + kHalfLanes <= count; i += kHalfLanes) {
        hn::StoreU(hn::Mul(hn::LoadU(kFloats, layer + i), factor), kFloats, blend + i);
    }
    for (; i < count; ++i) {
        blend[i] = layer[i] * scale;
    }
}

void join(HeightJoin join, float* blend, float const* layer, float scale, float fraction, std::size_t count)
{
    switch (join) {
    case HeightJoin::kStart:
        start(blend, layer, scale, count);
        break;
    case HeightJoin::kFade:
        fade<Layer>(blend, layer, scale, fraction, count);
        break;
    case HeightJoin::kOverlay:
        fade<Overlay>(blend, layer, scale, fraction, count);
        break;
    case HeightJoin::kMultiply:
        fade<Product>(blend, layer, scale, fraction, count);
        break;
    case HeightJoin::kAdd:
        fade<Sum>(blend, layer, scale, fraction, count);
        break;
    }
}

} // namespace
} // namespace umbrixlib::detail::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace umbrixlib::detail {

HWY_EXPORT(join);

void join_heights(HeightStep const& step, std::ptrdiff_t at, float* blend, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(join)(step.join, blend, step.layer + at, step.scale, step.fraction, count);
}

} // namespace umbrixlib::detail
#endif
