// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace umbrixlib::detail {

/// How the heights of a layer join those blended so far.
enum class HeightJoin {
    kStart,    ///< They take their place.
    kFade,     ///< Cross-fade to the layer.
    kOverlay,  ///< To the overlay, weighted by the blend itself, which is not limited to 0..1.
    kMultiply, ///< To the product.
    kAdd       ///< To the sum.
};

/// A layer that joins.
struct HeightStep {
    HeightJoin join;
    float const* layer;
    float scale;    ///< Its heights are multiplied by this first, each rounded.
    float fraction; ///< Of the layer in the cross-fade.
};

/// Folds @p count heights of @p step, from its layer's height @p at on, into those at @p blend.
void join_heights(HeightStep const& step, std::ptrdiff_t at, float* blend, std::size_t count);

} // namespace umbrixlib::detail
