// SPDX-License-Identifier: MIT
#include "filters/recursive_gaussian_tile.h"

#include "common/vector_targets.h"

#include <cstddef>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/recursive_gaussian_tile.cpp"
#include <hwy/foreach_target.h>

#include "common/lanes-inl.h"
#include "filters/tile_access-inl.h"

HWY_BEFORE_NAMESPACE();
namespace umbrixlib::detail::HWY_NAMESPACE {
namespace {

/// Rounding::kOnce. A product of two floats is exact in double, so fusing it with the sum or difference that
/// follows changes no bit.
struct RoundedOnce {
    using Memory = HalfFloats;
    using Vector = hn::Vec<Doubles>;

    static HWY_INLINE Vector set(float value) { return hn::Set(Doubles(), static_cast<double>(value)); }
    static HWY_INLINE Vector load(float const* from) { return widened(hn::Load(Memory(), from)); }
    static HWY_INLINE Vector as_state(hn::Vec<Memory> result) { return widened(result); }

    static HWY_INLINE hn::Vec<Memory> result(Vector f1, Vector x1, Vector f2, Vector x2, Vector b1, Vector y1,
                                             Vector b2, Vector y2)
    {
        Vector const fed = hn::MulAdd(f2, x2, hn::Mul(f1, x1));
        return narrowed(hn::NegMulAdd(b2, y2, hn::NegMulAdd(b1, y1, fed)));
    }
};

/// Rounding::kEveryOperation. Nothing may be fused here.
struct RoundedEveryOperation {
    using Memory = Floats;
    using Vector = hn::Vec<Floats>;

    static HWY_INLINE Vector set(float value) { return hn::Set(Memory(), value); }
    static HWY_INLINE Vector load(float const* from) { return hn::Load(Memory(), from); }
    static HWY_INLINE Vector as_state(Vector result) { return result; }

    static HWY_INLINE Vector result(Vector f1, Vector x1, Vector f2, Vector x2, Vector b1, Vector y1,
                                    Vector b2, Vector y2)
    {
        Vector const fed = hn::Add(hn::Mul(f1, x1), hn::Mul(f2, x2));
        return hn::Sub(hn::Sub(fed, hn::Mul(b1, y1)), hn::Mul(b2, y2));
    }
};

/// One direction of the recursion for as many lines as fill @p kVectors registers: enough to hide the latency
/// of a step, few enough for the state to stay in registers.
template <class Arithmetic, int kVectors>
class Recursion {
    using Memory = typename Arithmetic::Memory;
    using Vector = typename Arithmetic::Vector;
    using Bits = hn::RebindToUnsigned<Memory>;
    static constexpr std::size_t kLanes = hn::MaxLanes(Memory());

public:
    static constexpr std::size_t kWidth = kVectors * kLanes; ///< Floats of a step.

    explicit HWY_INLINE Recursion(GaussianRecursion const& coefficients)
        : f1_(Arithmetic::set(coefficients.f1)), f2_(Arithmetic::set(coefficients.f2)),
          b1_(Arithmetic::set(coefficients.b1)), b2_(Arithmetic::set(coefficients.b2))
    {
        HWY_UNROLL(8)
        for (int v = 0; v < kVectors; ++v) {
            x2_[v] = y1_[v] = y2_[v] = Arithmetic::set(0.0f);
        }
    }

    /// Takes in one element of every line.
    HWY_INLINE void step(float const* HWY_RESTRICT in)
    {
        HWY_UNROLL(8)
        for (int v = 0; v < kVectors; ++v) {
            next(in + static_cast<std::size_t>(v) * kLanes, v);
        }
    }

    /// The same, and writes the results.
    HWY_INLINE void step(float const* HWY_RESTRICT in, float* HWY_RESTRICT out)
    {
        HWY_UNROLL(8)
        for (int v = 0; v < kVectors; ++v) {
            hn::Store(next(in + static_cast<std::size_t>(v) * kLanes, v), Memory(),
                      out + static_cast<std::size_t>(v) * kLanes);
        }
    }

    /// The same; true if all the results stood in @p out before, to the bit.
    HWY_INLINE bool step_and_compare(float const* HWY_RESTRICT in, float* HWY_RESTRICT out)
    {
        auto differing = hn::Zero(Bits());
        HWY_UNROLL(8)
        for (int v = 0; v < kVectors; ++v) {
            float* const place = out + static_cast<std::size_t>(v) * kLanes;
            auto const before = hn::BitCast(Bits(), hn::Load(Memory(), place));
            auto const result = next(in + static_cast<std::size_t>(v) * kLanes, v);
            differing = hn::Or(differing, hn::Xor(before, hn::BitCast(Bits(), result)));
            hn::Store(result, Memory(), place);
        }
        return hn::AllTrue(Bits(), hn::Eq(differing, hn::Zero(Bits())));
    }

private:
    HWY_INLINE hn::Vec<Memory> next(float const* HWY_RESTRICT in, int v)
    {
        Vector const x1 = Arithmetic::load(in);
        auto const y = Arithmetic::result(f1_, x1, f2_, x2_[v], b1_, y1_[v], b2_, y2_[v]);
        x2_[v] = x1;
        y2_[v] = y1_[v];
        y1_[v] = Arithmetic::as_state(y);
        return y;
    }

    Vector f1_, f2_, b1_, b2_;
    Vector x2_[kVectors], y1_[kVectors], y2_[kVectors];
};

/// The run that fills the state. Its results are kept for the run proper.
template <class AnyRecursion>
HWY_INLINE void warm_up(AnyRecursion& recursion, float const* in, float* out, std::ptrdiff_t step,
                        std::size_t length)
{
    for (; length != 0; --length) {
        recursion.step(in, out);
        in += step;
        out += step;
    }
}

/// The run proper, over the results of the warm-up in @p out. When all lines have given the warm-up's bits
/// twice in a row, state and input are what they were there, so the rest stands in @p out already.
template <class AnyRecursion>
HWY_INLINE void run(AnyRecursion& recursion, float const* in, float* out, std::ptrdiff_t step,
                    std::size_t length)
{
    constexpr std::size_t kStepsPerLook = 16;
    std::ptrdiff_t const to_the_last_two = (std::ptrdiff_t{kStepsPerLook} - 2) * step;
    for (; length >= kStepsPerLook; length -= kStepsPerLook) {
        warm_up(recursion, in, out, step, kStepsPerLook - 2);
        in += to_the_last_two;
        out += to_the_last_two;
        bool const met = recursion.step_and_compare(in, out);
        if (recursion.step_and_compare(in + step, out + step) && met) {
            return;
        }
        in += 2 * step;
        out += 2 * step;
    }
    warm_up(recursion, in, out, step, length);
}

/// Whether the run proper is expected to meet the warm-up's results. Where the recursion forgets slowly, what
/// it rounds away keeps `Rounding::kOnce` runs apart to the end; then there is no use in keeping any.
HWY_INLINE bool runs_meet(GaussianPass const& pass)
{
    constexpr float kSlow = 0.75f; // of a sigma of 12
    return pass.rounding != Rounding::kOnce || !(pass.forward.b2 > kSlow);
}

/// Warm-up and run proper of one direction, @p turn between them, over the elements from @p in on; the
/// results stand from @p out on.
template <class AnyRecursion, class Turn>
HWY_INLINE void filter_line(AnyRecursion& recursion, float const* in, float* out, std::ptrdiff_t step,
                            std::size_t length, bool meets, Turn&& turn)
{
    if (meets) {
        warm_up(recursion, in, out, step, length);
        turn();
        run(recursion, in, out, step, length);
        return;
    }
    for (std::size_t i = 0; i < length; ++i) {
        recursion.step(in + static_cast<std::ptrdiff_t>(i) * step);
    }
    turn();
    warm_up(recursion, in, out, step, length);
}

template <class Arithmetic, int kVectors>
struct TileFilter {
    using Direction = Recursion<Arithmetic, kVectors>;
    static constexpr std::size_t kWidth = Direction::kWidth;

    static std::size_t lines(GaussianPass const& pass) { return kWidth / pass.components; }

    /// Input with one more step at the end, results forward, results backward.
    static std::size_t workspace_floats(GaussianPass const& pass) { return (3 * pass.length + 1) * kWidth; }

    static void filter(GaussianPass const& pass, std::size_t first_line, float* workspace)
    {
        constexpr std::ptrdiff_t kStep = kWidth;
        std::size_t const capacity = lines(pass);
        TileLines const here{first_line, HWY_MIN(capacity, pass.lines - first_line), capacity};
        std::size_t const length = pass.length;
        float* const input = workspace;
        float* const beyond = input + length * kWidth;
        float* const forward = beyond + kWidth;
        float* const backward = forward + length * kWidth;
        gather(pass, here, input);

        bool const meets = runs_meet(pass);
        Direction ahead(pass.forward);
        filter_line(ahead, input, forward, kStep, length, meets, [] {});

        // The backward recursion is fed with the element after its result: none at first, then the wrapped
        // one.
        Direction back(pass.backward);
        float* const last = backward + (length - 1) * kWidth;
        std::memset(beyond, 0, kWidth * sizeof(float));
        filter_line(back, beyond, last, -kStep, length, meets,
                    [&] { std::memcpy(beyond, input, kWidth * sizeof(float)); });

        scatter(pass, here, forward, backward);
    }
};

/// Calls @p body with the filter that suits @p pass. A step of RoundedOnce takes longest and needs most
/// registers side by side to hide it; the width of a tile is a multiple of its components.
template <class Body>
HWY_INLINE auto with_filter(GaussianPass const& pass, Body&& body)
{
    if (pass.rounding == Rounding::kOnce) {
        return body(TileFilter<RoundedOnce, 6>());
    }
    return pass.components == 3 ? body(TileFilter<RoundedEveryOperation, 3>())
                                : body(TileFilter<RoundedEveryOperation, 4>());
}

std::size_t tile_lines(GaussianPass const& pass)
{
    return with_filter(pass, [&](auto filter) HWY_ATTR { return filter.lines(pass); });
}

std::size_t workspace_floats(GaussianPass const& pass)
{
    return with_filter(pass, [&](auto filter) HWY_ATTR { return filter.workspace_floats(pass); });
}

void filter_tile(GaussianPass const& pass, std::size_t first_line, float* workspace)
{
    with_filter(pass, [&](auto filter) HWY_ATTR { filter.filter(pass, first_line, workspace); });
}

} // namespace
} // namespace umbrixlib::detail::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace umbrixlib::detail {

HWY_EXPORT(tile_lines);
HWY_EXPORT(workspace_floats);
HWY_EXPORT(filter_tile);

std::size_t gaussian_tile_lines(GaussianPass const& pass)
{
    return HWY_DYNAMIC_DISPATCH(tile_lines)(pass);
}

std::size_t gaussian_workspace_floats(GaussianPass const& pass)
{
    return HWY_DYNAMIC_DISPATCH(workspace_floats)(pass);
}

void gaussian_filter_tile(GaussianPass const& pass, std::size_t first_line, float* workspace)
{
    HWY_DYNAMIC_DISPATCH(filter_tile)(pass, first_line, workspace);
}

} // namespace umbrixlib::detail
#endif
