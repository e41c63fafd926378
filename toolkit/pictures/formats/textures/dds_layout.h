// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/formats/textures/texel_layout.h"

namespace umbrixlib::toolkit {

/// What the headers of a DDS file tell, from its start, at which @p reader stands: then it stands at the
/// first texel. Looks at the size, and refuses by name what is not taken.
TexelLayout read_dds_layout(ByteReader& reader);

} // namespace umbrixlib::toolkit
