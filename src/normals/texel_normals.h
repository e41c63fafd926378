// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The normal at one texel from the heights around it, the texel pitch being 1. The caller chooses the
/// neighbours at an image's border. A height that rises towards plus gives a negative component.

#include "common/export.h"
#include "common/vector_types.h"

inline namespace umbrix_v0 {

/// Unit normal by the difference of opposite neighbours. Flat ground gives (0, 0, 1).
///
/// Contract: the difference over two texels counts as the slope over one; half of it is expected. Normals
/// come out twice as steep. Test: GetNormal.TheCentralDifferenceIsNotHalved
///
/// @param ym Height of the neighbour on the minus side of y.
/// @param yp On the plus side of y.
/// @param xp On the plus side of x.
/// @param xm On the minus side of x.
UMBRIX_API float3 GetNormal(float ym, float yp, float xp, float xm);

/// Normal by bisection: on each axis the angle halfway between the tangents towards the two neighbours, which
/// gives a cosine for the component of the axis and a sine for z.
///
/// Contract: z is the sum of both sines, 2 on flat ground; a unit vector is expected. Whoever needs one
/// normalises it. Test: GetNormal.BisectionOnFlatGroundPointsUpWithALengthOfTwo
///
/// The neighbours come as in the central difference. A NaN among the heights of an axis leaves its angle at
/// 0: cosine 1, sine 0.
///
/// @param ym Height on the minus side of y.
/// @param yp On the plus side of y.
/// @param xp On the plus side of x.
/// @param xm On the minus side of x.
/// @param c  Of the texel itself.
UMBRIX_API float3 GetNormal(float ym, float yp, float xp, float xm, float c);

} // namespace umbrix_v0
