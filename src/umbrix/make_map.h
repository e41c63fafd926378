// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/gpu_library.h"
#include "boundary/texel_array.h"
#include "common/export.h"
#include "common/vector_types.h"
#include "foundation/list.h"
#include "foundation/n_layer.h"
#include "foundation/picture_view.h"
#include "foundation/run_control.h"
#include "umbrix/umbrix_options.h"

#include <optional>

inline namespace umbrix_v0 {

class NLayers;

} // namespace umbrix_v0

namespace umbrixlib {

/// What the map of a run is made of.
enum class MapForm {
    kFloats, ///< Four floats a texel.
    /// Three bytes a texel, as `map_to_bytes` makes them. Floats are stored only for the grading.
    kColourBytes,
    kBytes, ///< The same with alpha: four bytes a texel.
};

/// What `make_map` is asked for.
struct MapRequest {
    /// Heights, the mean of the colours, with `options.height_map`; else normals with heights in the alpha.
    PictureView source;
    /// Of normals in `source`.
    NormalCoding coding = NormalCoding::kColours;
    /// As `UmbrixFile` has them; `preserve` needs no `height_copy`. The pointers, the fields that runs write,
    /// `keep_buffers`, `recurse` and `cancel` are not read.
    umbrix_options options = {};

    /// Descriptions of layers and the stack over them, both or none: the stack has a layer for each
    /// description already. They act as in `UmbrixFile`.
    LinkedList<n_layer>* layers = nullptr;
    NLayers* stack = nullptr; ///< As @p layers. A blend may rewrite its normals.

    /// If set, the run is that of `UmbrixFile_GPU` on this device.
    std::optional<GPU_opt> gpu;

    /// Of heights that normals are made of; the occlusion has the options' own.
    Borders borders{};

    MapForm form = MapForm::kFloats;   ///< Of the map in the result.
    bool wants_light = false;          ///< Asks for that array of the result, as do the next four.
    bool wants_occlusion = false;      ///< As `wants_light`.
    bool wants_normals = false;        ///< As `wants_light`.
    bool wants_heights = false;        ///< As `wants_light`.
    bool wants_source_heights = false; ///< As `wants_light`.

    RunControl* control = nullptr; ///< Watches and stops the run; null for none.
};

/// What `make_map` gives. Arrays have rows * cols texels, the bottom row first, and are null where a run
/// makes nothing for them.
struct MapResult {
    Outcome outcome = Outcome::kInvalid; ///< Without kDone all arrays are null.
    int rows = 0;                        ///< That of the source or of the first layer.
    int cols = 0;                        ///< As `rows`.

    TexelArray<float4> map;           ///< With `MapForm::kFloats`. May lie outside 0..1.
    TexelArray<unsigned char> bytes;  ///< With the other two forms.
    TexelArray<float3> light;         ///< Before occlusion and grading; null if the options ask for none.
    TexelArray<float3> occlusion;     ///< Open shares, 0..1; null if the options ask for none.
    TexelArray<float3> normals;       ///< What the light is made of; null if that is.
    TexelArray<float> heights;        ///< Filtered and graded, before `h_scale`.
    TexelArray<float> source_heights; ///< As `height_copy` has them: before the filter; with `gpu` after it.
};

/// Makes an Umbrix map of a picture in memory: the stages of `UmbrixFile` or, with `gpu`, of
/// `UmbrixFile_GPU`, from floats to floats. For a picture of bytes, three or four a texel, the map's bytes
/// are those of the file functions, whatever the options say; no `.vtf` name is involved, so rows stay in
/// their order.
///
/// With `options.blend_height`, or a first layer of another size than the source, heights come from the
/// layers as in the file functions: no sample of the source is read, and alpha without occlusion is 0.
///
/// Errors: std::bad_alloc leaves the call, and nothing is kept. NaN among the heights never blocks a ray; a
/// NaN in the map becomes the byte 0.
/// Threads: may be called from several at once; the runs wait for each other, as each takes all processors.
/// Not beside `UmbrixFile_GPU` or calls of the graphics library. The size of the OpenMP team shows in no
/// result.
UMBRIX_API MapResult make_map(MapRequest const& request);

} // namespace umbrixlib
