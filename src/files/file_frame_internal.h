// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/gpu_library.h"
#include "foundation/list.h"
#include "foundation/n_layer.h"
#include "layers/nlayers.h"
#include "umbrix/kept_buffers_internal.h"
#include "umbrix/layer_branch_internal.h"
#include "umbrix/map_bytes_internal.h"
#include "umbrix/umbrix_options.h"

#include <optional>
#include <string>

namespace umbrixlib::detail {

/// What precedes and what follows the stages of a run on one file, on every road alike.

/// Loads @p input into DevIL's bound image and reads its @p shape.
/// @return False after a message box.
bool open_file(std::string const& input, MapShape& shape);

/// The stack of a run on one file, which follows the descriptions.
class FileStack {
public:
    /// Fills the stack anew from the files of @p layers, unless both have the same number of layers.
    ///
    /// @param layers Null counts as empty.
    /// @param stack  Null counts as an empty stack, which lives as long as this object.
    FileStack(LinkedList<n_layer>* layers, NLayers* stack);

    /// Null if there is neither a stack nor a description.
    NLayers* get() const { return stack_; }

private:
    std::optional<NLayers> own_;
    NLayers* stack_;
};

/// Settles the run's size in @p shape, and `blend_height` and the size fields in @p options.
void settle_size(LayerBranch const& layers, umbrix_options& options, MapShape& shape);

/// Puts the bytes of the finished map into the bound image.
void hand_over_bytes(MapShape shape, unsigned char* bytes);

/// Saves the bound image and shuts DevIL down.
/// @return False after a message box; then DevIL stays up, and a kept `ao_map` is released.
bool close_file(std::string const& output, umbrix_options const& options, KeptBuffers& kept);

/// Whether a file of that name gets its rows reversed.
bool has_reversed_rows(std::string const& output);

/// `UmbrixFile` and `UmbrixFile_GPU`, with @p kept for the arrays that they leave to the caller.
bool convert_file(std::string const& input, std::string const& output, umbrix_options& options,
                  KeptBuffers& kept, LinkedList<n_layer>* layers, NLayers* stack, std::string* status,
                  int* progress);
bool convert_file(GPU_opt gpu, std::string const& input, std::string const& output, umbrix_options& options,
                  KeptBuffers& kept, LinkedList<n_layer>* layers, NLayers* stack, std::string* status,
                  int* progress);

} // namespace umbrixlib::detail
