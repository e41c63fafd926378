// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/list.h"
#include "foundation/n_layer.h"
#include "layers/nlayers.h"
#include "umbrix/map_bytes_internal.h"
#include "umbrix/umbrix_options.h"

namespace umbrixlib::detail {

/// How a layer stack enters a run: it decides where the heights come from and how large the map is.
class LayerBranch {
public:
    /// @param layers Null counts as empty.
    /// @param stack  A layer for each of @p layers; null only if there are none.
    LayerBranch(LinkedList<n_layer> const* layers, NLayers* stack)
        : has_layers_(layers != nullptr && layers->count > 0), stack_(stack)
    {
    }

    /// Settles `blend_height` and, where the stack overrules the image, the size in @p shape.
    void settle(umbrix_options& options, MapShape& shape) const;

    /// Whether there are descriptions. Without them the run is on the image alone.
    bool has_layers() const { return has_layers_; }
    /// The stack, if there are descriptions.
    NLayers& stack() const { return *stack_; }

private:
    bool has_layers_;
    NLayers* stack_;
};

} // namespace umbrixlib::detail
