// SPDX-License-Identifier: MIT
#include "umbrix/layer_branch_internal.h"

namespace umbrixlib::detail {

LayerBranch::LayerBranch(LinkedList<n_layer>* layers, NLayers* stack)
    : has_layers_(layers != nullptr && layers->count > 0), layers_(layers), stack_(stack)
{
    if (has_layers_ && stack == nullptr) {
        stack_ = &empty_stack_.emplace(layers);
    }
}

void LayerBranch::follow_descriptions()
{
    int const described = has_layers_ ? layers_->count : 0;
    // Contract: equal numbers leave the stack as it is, whatever it holds; one would expect file names to be
    // compared. A stack that was filled by hand stays. Test:
    // UmbrixFileLayers.AStackOfTheSameNumberOfLayersIsNotRebuilt
    if (stack_ == nullptr || stack_->Count() == described) {
        return;
    }
    stack_->Clear();
    for (int i = 0; i < described; ++i) {
        stack_->AddLayer(layers_->GetRef(i)->filename.c_str());
    }
}

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
