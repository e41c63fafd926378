// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

inline namespace umbrix_v0 {

/// How `Normal2Umbrix` turns a normal into the light from the three basis directions. Any value that is not
/// listed works as `Modes_Projection`.
enum Modes : std::int32_t {
    Modes_Projection = 0, ///< Dot products with the basis vectors as they are; negative values stay.
    Modes_UnitBasis = 1,  ///< The same with all three basis vectors of unit length.
    Modes_FlatIsFull = 2, ///< As `Modes_UnitBasis`, negatives cut, scaled so that a flat normal gives 1.
    Modes_Squared = 3,    ///< As `Modes_UnitBasis`, negatives cut, squared.
};

} // namespace umbrix_v0
