// SPDX-License-Identifier: MIT
#include "toolkit/settings/stack_record.h"

namespace umbrixlib::toolkit {

n_layer record_of(StackLayer const& layer, StackLayer const* next, float normal_scale, float n_scale)
{
    n_layer record;
    record.filename = layer.file;
    if (next != nullptr) {
        record.blend_mode = next->blend;
        record.opacity = next->opacity;
    }
    record.n_scale = layer.n_scale.value_or(n_scale);
    record.L_Detail = layer.detail;
    record.gaussian = layer.gaussian;
    record.depth = layer.depth;
    record.normal_scale = normal_scale;
    record.edge_a = layer.edge_a;
    record.edge_b = layer.edge_b;
    return record;
}

} // namespace umbrixlib::toolkit
