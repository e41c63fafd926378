// SPDX-License-Identifier: MIT
#include "umbrix/layer_branch_internal.h"

namespace umbrixlib::detail {

void LayerBranch::settle(umbrix_options& options, MapShape& shape) const
{
    if (!has_layers_) {
        options.blend_height = false;
        return;
    }
    int const rows = stack_->GetLayerHeight(0);
    int const cols = stack_->GetLayerWidth(0);
    if (options.generate_normal && (rows != shape.rows || cols != shape.cols)) {
        shape.rows = rows;
        shape.cols = cols;
        options.blend_height = true;
    }
}

} // namespace umbrixlib::detail
