// SPDX-License-Identifier: MIT
#pragma once

#include "capi/call_internal.h"
#include "toolkit/pictures/picture.h"

/// @file
/// Texels in memory of the caller's: any strides, the top row first.

namespace umbrix_capi {

/// @p given with all strides filled in. A WrongArgument if it describes no picture.
umbrix_layout whole_layout(umbrix_layout const* given);

/// A picture of the texels at @p texels, without attributes.
umbrixlib::toolkit::Picture fetch(void const* texels, umbrix_layout const& layout);

/// Writes @p picture, of the sizes, channels and samples of @p layout, to @p texels.
void store(umbrixlib::toolkit::Picture const& picture, void* texels, umbrix_layout const& layout);

} // namespace umbrix_capi
