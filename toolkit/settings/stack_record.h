// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/settings/stack_description.h"

#include <umbrixlib.h>

namespace umbrixlib::toolkit {

/// The library's description of a layer. There a record tells how the layer after its own joins; in a stack
/// file a layer tells it of itself, so both values come from @p next, which is null for the uppermost layer.
/// @param n_scale Strength of the normals if the layer has none of its own.
n_layer record_of(StackLayer const& layer, StackLayer const* next, float normal_scale, float n_scale);

} // namespace umbrixlib::toolkit
