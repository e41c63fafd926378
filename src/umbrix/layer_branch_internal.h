// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/list.h"
#include "foundation/n_layer.h"
#include "layers/nlayers.h"
#include "umbrix/map_bytes_internal.h"
#include "umbrix/umbrix_options.h"

#include <optional>

namespace umbrixlib::detail {

/// How a layer stack enters a run on one file: the stack follows the list of descriptions, then decides where
/// the heights come from and how large the map is.
class LayerBranch {
public:
    /// @param layers Null counts as empty.
    /// @param stack  Null counts as an empty stack, which lives as long as this object.
    LayerBranch(LinkedList<n_layer>* layers, NLayers* stack);

    /// Fills the stack anew from the descriptions, unless both have the same number of layers.
    void follow_descriptions();
    /// Settles `blend_height` and, where the stack overrules the image, the size in @p shape.
    void settle(umbrix_options& options, MapShape& shape) const;

    /// Whether there are descriptions. Without them the run is on the image alone.
    bool has_layers() const { return has_layers_; }
    /// The stack, if there are descriptions.
    NLayers& stack() const { return *stack_; }

private:
    bool has_layers_;
    LinkedList<n_layer>* layers_;
    std::optional<NLayers> empty_stack_;
    NLayers* stack_;
};

} // namespace umbrixlib::detail
