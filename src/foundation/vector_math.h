// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Free, stateless functions over vectors and scalars. Float operands are widened to double, the arithmetic
/// runs in double, and N(e) below marks where e is rounded to float; sums are taken in the order written.
/// Nothing is checked: bad values pass through as the arithmetic leaves them. A pointer is to three floats
/// and not null; two of them may be the same. Safe from any number of threads.

#include "common/export.h"
#include "common/vector_types.h"

inline namespace umbrix_v0 {

/// Cross product of two triples, in a new block of three floats that the caller frees with the scalar
/// `delete`.
///
/// Contract: the block is three floats long, and `delete` is told of one; `delete[]` would be expected. The
/// default allocator ignores the size. One that compares sizes ends the program, as address sanitizer does:
/// compile such a caller with `-fno-sized-deallocation`. Test: VectorMath.CrossIsFreedAsOneObject
UMBRIX_API float* cross(float* const a, float* const b);

/// N(a[1]*b[1] + a[0]*b[0] + a[2]*b[2]); the z term is added last, which is what the last bit depends on.
UMBRIX_API float dot(float* const a, float* const b);

/// Length of a triple: N(sqrt(N(sum))), the sum in the order of `dot`.
UMBRIX_API float length(float* const v);
/// Length of (x, y, z), in the same way.
UMBRIX_API float length(float x, float y, float z);
/// Distance between (x1, y1, z1) and (x2, y2, z2). The coordinates come interleaved, axis by axis.
UMBRIX_API float length(float x1, float x2, float y1, float y2, float z1, float z2);
/// Distance between two triples.
UMBRIX_API float length(float* const a, float* const b);

/// Brings a triple to unit length in place. The zero vector becomes three NaN.
UMBRIX_API void normalize(float* const v);

/// N(1 / N(sqrt(x))): a true quotient, no approximation.
UMBRIX_API float rsqrt(float x);

/// @p x limited to 0..1. NaN passes through.
UMBRIX_API float saturate(float x);

/// @p a if a >= b, else @p b; so a NaN in either place gives @p b.
UMBRIX_API float max_num(float a, float b);

/// N(degrees * pi / 180), the product first.
UMBRIX_API float torad(float degrees);

/// @p v with 1 added to each component.
///
/// Contract: takes its operand by value, so `++v` leaves v as it was; an increment in place is expected.
/// Test: VectorMath.IncrementLeavesItsOperandAlone
UMBRIX_API float3 operator++(float3 v);
/// @p v with 1 subtracted from each component; leaves its operand as it was, as `operator++` does.
UMBRIX_API float3 operator--(float3 v);

/// Wraps @p value into 0..limit by whole steps of @p limit.
///
/// Contract: wraps, although the name promises a clamp, and the range includes both ends: with a limit of
/// 360, 720 ends at 360 and -360 at 0. Test: VectorMath.LimitNumWrapsAndIncludesBothEnds
/// @param limit Above 0. With another limit no step leads into the range, and @p value is left alone.
UMBRIX_API void limit_num(int& value, int limit);
/// The same, each step rounded to float. A step that no longer changes @p value ends the walk.
UMBRIX_API void limit_num(float& value, float limit);

} // namespace umbrix_v0
