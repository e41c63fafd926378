// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/integration/heights_of_differences.h"
#include "toolkit/pictures/picture.h"
#include "toolkit/settings/settings.h"

#include <cstddef>
#include <string>

namespace umbrixlib::toolkit {

/// How a sample stands for a component of a normal: sample * scale + offset, at most 1.
struct NormalReading {
    std::string name; ///< For messages: "bytes that were cut off".
    double scale;
    double offset;
    double least_up;   ///< A component z below this cannot be told from 0.
    double flat = 0.0; ///< A component as small as this is 0.
};

/// How the samples of @p normals, a picture of three channels or four, are read: as it tells itself or, where
/// it tells nothing, so that its vectors are nearest to a length of 1 and its slopes to those of a surface. A
/// byte that was cut off stands for the middle of what became it, one that was rounded for itself; some
/// makers have flat ground at 128.
NormalReading reading_of_normals(Picture const& normals);

/// What is wrong with texels of a normal map.
struct OddNormals {
    std::size_t invalid = 0;     ///< NaN or infinite.
    std::size_t turned_away = 0; ///< They face down, or have no length.
};

/// Makes the central differences of heights of which @p normals, of three channels or four, were made with
/// @p n_scale, which is not 0. Odd normals count as flat, and are counted.
///
/// The same to the bit with any number of threads.
CentralDifferences differences_of_normals(Picture const& normals, NormalReading const& reading, NormalY green,
                                          double n_scale, OddNormals& odd);

} // namespace umbrixlib::toolkit
