// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/encoder.h"

namespace umbrixlib::toolkit {

/// The formats that are left to DevIL. Both are null in a build without it.
Decoder const* devil_decoder();
Encoder const* devil_encoder();

} // namespace umbrixlib::toolkit
