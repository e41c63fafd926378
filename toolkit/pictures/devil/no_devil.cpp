// SPDX-License-Identifier: MIT
// In place of all else in this folder, in a build without DevIL.
#include "toolkit/pictures/devil/devil_formats.h"

namespace umbrixlib::toolkit {

Decoder const* devil_decoder()
{
    return nullptr;
}

Encoder const* devil_encoder()
{
    return nullptr;
}

} // namespace umbrixlib::toolkit
