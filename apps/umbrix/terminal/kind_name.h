// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/depth.h"
#include "toolkit/base/kind.h"
#include "toolkit/pictures/picture.h"
#include "toolkit_names.h"

namespace umbrix_cli {

using umbrixlib::toolkit::name_of; // of a depth

inline char const* name_of(Kind kind)
{
    return kind == Kind::kHeightMap ? "height map" : "normal map";
}

inline char const* name_of(PictureKind kind)
{
    switch (kind) {
    case PictureKind::kNormals:
        return "normal map";
    case PictureKind::kHeights:
        return "height map";
    case PictureKind::kLight:
        return "Umbrix map";
    default:
        return "lit picture";
    }
}

inline char const* name_of(NormalY direction)
{
    return direction == NormalY::kUp ? "up" : "down";
}

} // namespace umbrix_cli
