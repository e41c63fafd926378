// SPDX-License-Identifier: MIT
#pragma once

#include "common/ray.h"
#include "common/relief.h"
#include "compare/occlusion_before/byte_lattice.h"
#include "compare/occlusion_before/lattice.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace occlusion_before {

using umbrixlib::detail::Relief;

/// One step of a ray inside a block.
struct RayStep {
    std::int32_t offset; ///< From the block's first step to this one, in elements of the plane.
    /// Levels climbed up to the block's next step, `repeated` by the lattice; 0 at its last.
    std::uint32_t rise;

    int levels() const { return static_cast<int>(rise & 0xffffU); } ///< Of 16-bit levels.
};

/// Consecutive steps of a ray that are compared at one go.
struct RayBlock {
    std::int32_t row; ///< Rows from the ray's start to the first step.
    std::int32_t column;
    std::int32_t first_step; ///< Index into the bundle's steps.
    std::int32_t number;     ///< The first step's number along the ray, from 1.
    std::int16_t climb;      ///< Levels that the ray has climbed at the first step.
    std::uint8_t steps;
    std::uint8_t rows_spanned;
    std::int8_t north; ///< Least row of the block against its first step's: 0 or below.
    std::int8_t west;  ///< Least column likewise.
};

/// A ray reduced to the steps that can meet the relief. No step beyond them can block it at any texel.
struct ReducedRay {
    ray step;
    std::int32_t first_block;
    /// One past the last block that lies within the reach of this ray from every texel.
    std::int32_t end_certain;
    /// One past the last block. From `end_certain` on the reach may have ended the ray, texel by texel.
    std::int32_t end_block;
    float steps_per_level; ///< Enough steps to climb one level.
};

/// Rays that are reduced to the same lattice, neighbours in azimuth next to each other so that they pass over
/// the same strips of memory.
struct RayBundle {
    std::vector<RayStep> steps;
    std::vector<RayBlock> blocks;
    std::vector<ReducedRay> rays;
};

/// Rays of one band, each in the form that suits it.
struct RayShare {
    RayBundle bytes;            ///< Reduced to steps in 8-bit levels.
    RayBundle words;            ///< Reduced to steps in 16-bit levels.
    std::vector<ray> unreduced; ///< Rays that no reduction fits: they sink, leap, or are not numbers.

    std::size_t rays() const { return bytes.rays.size() + words.rays.size() + unreduced.size(); }
};

/// The lattices that a map has.
struct Lattices {
    std::optional<Lattice> words; ///< None if heights are infinite.
    std::optional<ByteLattice> bytes;
};

/// The rays of one band, handed out in shares of bounded size.
class RayReducer {
public:
    RayReducer(ray const* rays, int count);

    bool done() const { return next_ == rays_.size(); }
    /// The next share. Without a lattice all its rays stay unreduced.
    RayShare next(Relief const& relief, Lattices const& lattices, std::ptrdiff_t plane_stride);

private:
    std::vector<ray> rays_;
    std::size_t next_ = 0;
};

} // namespace occlusion_before
