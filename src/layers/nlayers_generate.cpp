// SPDX-License-Identifier: MIT
// From a layer's heights to its normals.
#include "layers/nlayers.h"

#include "layers/layer_access_internal.h"
#include "normals/height_to_normal_internal.h"

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

void NLayers::GenerateLayer(int index)
{
    n_layer* const record = record_at(*this, index);
    if (!is_layer(*this, index) || record == nullptr) {
        return;
    }
    Layer const layer = layer_at(*this, index);
    bool const has_buffers = layer.heights != nullptr && layer.normals != nullptr;
    if (record->regenerate && (has_buffers || layer.texels() == 0)) {
        std::string unseen_text;
        int unseen_progress = 0;
        RunReport report(&unseen_text, &unseen_progress);
        make_normals_of(layer.heights, layer.normals, layer.size.height, layer.size.width,
                        {record->n_scale, record->gaussian, record->depth, record->L_Detail, record->edge_a,
                         record->edge_b},
                        report, borders_);
    }
    record->regenerate = false;
}

void NLayers::GenerateLayers()
{
    for (int index = 0; index < Count(); ++index) {
        GenerateLayer(index);
    }
}

} // namespace umbrix_v0
