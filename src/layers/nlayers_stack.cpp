// SPDX-License-Identifier: MIT
// The stack as a list: what it holds, in which order, and who releases it.
#include "layers/nlayers.h"

#include "boundary/platform.h"
#include "layers/layer_access_internal.h"
#include "layers/picture_files_internal.h"

#include <memory>
#include <utility>

namespace umbrixlib::detail {

void (*prepare_picture_files)() = nullptr;

namespace {

template <typename T>
void release_all(LinkedList<T*>& buffers)
{
    while (buffers.count != 0) {
        delete[] buffers.RemoveFirst();
    }
}

template <typename T>
void exchange(LinkedList<T>& list, int a, int b)
{
    std::swap(*list.GetRef(a), *list.GetRef(b));
}

} // namespace

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

NLayers::NLayers(LinkedList<n_layer>* layers) : records(layers)
{
    if (prepare_picture_files != nullptr) {
        prepare_picture_files();
    }
}

NLayers::NLayers(LinkedList<n_layer>* layers, umbrixlib::InMemory memory)
    : records(layers), borders_(memory.borders)
{
}

NLayers::~NLayers()
{
    Clear();
}

void NLayers::Clear()
{
    release_all(normals);
    release_all(heights);
    while (sizes.count != 0) {
        sizes.RemoveFirst();
    }
    while (replaced_.count != 0) {
        LayerBuffers const gone = replaced_.RemoveFirst();
        delete[] gone.normals;
        delete[] gone.heights;
    }
    delete[] std::exchange(result, nullptr);
    delete[] std::exchange(height_result, nullptr);
    made_result_ = nullptr;
}

void NLayers::RemoveLayer(int index)
{
    if (is_layer(*this, index)) {
        delete[] normals.Remove(index);
        delete[] heights.Remove(index);
        sizes.Remove(index);
    }
}

void NLayers::MoveLayerUp(int index)
{
    if (index > 0 && index < Count()) {
        exchange(normals, index, index - 1);
        exchange(heights, index, index - 1);
        exchange(sizes, index, index - 1);
    }
}

void NLayers::MoveLayerDown(int index)
{
    if (index >= 0 && index < Count() - 1) {
        MoveLayerUp(index + 1);
    }
}

int NLayers::Count()
{
    return normals.count;
}

float3* NLayers::GetLayer(int index)
{
    return layer_at(*this, index).normals;
}

int NLayers::GetLayerWidth(int index)
{
    return layer_at(*this, index).size.width;
}

int NLayers::GetLayerHeight(int index)
{
    return layer_at(*this, index).size.height;
}

float3* NLayers::GetResult()
{
    return result;
}

int NLayers::GetResultSize()
{
    return static_cast<int>(layer_at(*this, 0).texels());
}

/// Puts an array for an image of @p size in the place of `result`; its contents are left open.
void NLayers::make_result(layer_size size)
{
    made_result_ = nullptr;
    delete[] std::exchange(result, nullptr);
    auto const texels = static_cast<std::size_t>(texels_of(size));
    result = new float3[texels];
    platform::prefer_large_pages(result, texels * sizeof(float3));
    made_result_ = result;
    made_result_texels_ = texels_of(size);
}

/// `result` if it has room for an image of @p size, else null.
float3* NLayers::result_for(layer_size size) const
{
    return result == made_result_ && made_result_texels_ < texels_of(size) ? nullptr : result;
}

/// Gives layer @p index the size @p size, with new buffers of zeros where they are asked for.
void NLayers::resize_layer(int index, layer_size size, bool new_normals, bool new_heights)
{
    auto const texels = static_cast<std::size_t>(texels_of(size));
    LayerBuffers gone = {};
    if (new_normals) {
        gone.normals = std::exchange(*normals.GetRef(index), new float3[texels]());
    }
    if (new_heights) {
        gone.heights = std::exchange(*heights.GetRef(index), new float[texels]());
    }
    if (gone.normals != nullptr || gone.heights != nullptr) {
        replaced_.Add(gone);
    }
    *sizes.GetRef(index) = size;
}

} // namespace umbrix_v0
