// SPDX-License-Identifier: MIT
// From results to image files.
#include "layers/nlayers.h"

#include "boundary/image_io.h"
#include "foundation/retained_buffer_internal.h"
#include "layers/layer_access_internal.h"
#include "layers/normal_bytes_internal.h"

#include <algorithm>
#include <atomic>
#include <cstring>

namespace umbrixlib::detail {

namespace {

RetainedBuffer<float> retained_heights;

bool is_vtf(char const* file)
{
    return std::strstr(file, ".vtf") != nullptr;
}

ImageBytes make_bytes(layer_size size)
{
    return make_image_bytes(static_cast<std::size_t>(texels_of(size)), 3);
}

void prepare_fresh_image()
{
    prepare_devil(Overwrite::kAllow);
    bind_fresh_image();
}

void save_bytes(char const* file, layer_size size, ImageBytes bytes)
{
    replace_image({size.width, size.height}, 3, bytes.get());
    bytes.reset();
    save_image_unseen(file);
}

void put_normal(float3 normal, unsigned char* texel)
{
    texel[0] = normal_byte(normal.x);
    texel[1] = normal_byte(normal.y);
    texel[2] = normal_byte(normal.z);
}

void put_grey(unsigned char grey, unsigned char* texel)
{
    std::fill_n(texel, 3, grey);
}

/// Where texel (@p x, @p y) lies in bytes whose rows are reversed. Row 0 would lie behind the last row.
std::ptrdiff_t reversed_offset(layer_size size, int x, int y)
{
    return (static_cast<std::ptrdiff_t>(size.height - y) * size.width + x) * 3;
}

/// Heights as grey bytes.
struct GreyScale {
    float const* heights;
    HeightStretch stretch;

    unsigned char operator[](std::ptrdiff_t i) const { return stretch.byte(heights[i]); }
};

/// Rows in reverse order, all threads stepping one column counter; see the contract of `SaveHeight`.
///
/// Every thread starts a finite number of rows, and behind the last start the counter only grows, so all of
/// them end. A thread writes at the column that it has read, whatever the counter has become since.
void put_reversed(GreyScale const& greys, layer_size size, unsigned char* bytes)
{
    std::atomic<int> shared_x = 0;
#pragma omp parallel for schedule(static)
    for (int y = size.height - 1; y >= 1; --y) {
        shared_x.store(0, std::memory_order_relaxed);
        for (int x = 0; (x = shared_x.load(std::memory_order_relaxed)) < size.width;
             shared_x.fetch_add(1, std::memory_order_relaxed)) {
            put_grey(greys[static_cast<std::ptrdiff_t>(y) * size.width + x],
                     bytes + reversed_offset(size, x, y));
        }
    }
}

void put_in_order(GreyScale const& greys, layer_size size, unsigned char* bytes)
{
    std::ptrdiff_t const texels = texels_of(size);
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t i = 0; i < texels; ++i) {
        put_grey(greys[i], bytes + 3 * i);
    }
}

} // namespace

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

bool NLayers::SaveResult(char const* file)
{
    layer_size const size = layer_at(*this, Count() - 1).size;
    float3 const* const saved = Count() == 0 ? nullptr : result_for(size);
    if (saved == nullptr) {
        return false;
    }
    prepare_fresh_image();
    ImageBytes image = make_bytes(size);
    unsigned char* const bytes = image.get();
    if (is_vtf(file)) {
#pragma omp parallel for schedule(static)
        for (int y = size.height - 1; y >= 1; --y) {
            for (int x = 0; x < size.width; ++x) {
                put_normal(saved[static_cast<std::ptrdiff_t>(y) * size.width + x],
                           bytes + reversed_offset(size, x, y));
            }
        }
    } else {
        umbrixlib::normals_to_bytes(saved, texels_of(size), bytes);
    }
    save_bytes(file, size, std::move(image));
    return true;
}

bool NLayers::SaveHeight(char const* file)
{
    if (result == nullptr || Count() == 0) {
        return false;
    }
    prepare_fresh_image();
    layer_size const size = sizes.Get(0);
    auto const texels = static_cast<std::size_t>(texels_of(size));
    ImageBytes bytes = make_bytes(size);
    Buffer<float> blended = retained_heights.take(texels);
    float* heights_now = blended.data.release();
    float const* const heights_before = heights_now;
    BlendHeightMap(heights_now);
    blended.data.reset(heights_now);
    if (heights_now != heights_before) {
        blended.capacity = texels;
    }
    GreyScale const greys{heights_now, HeightStretch(heights_now, texels_of(size))};
    if (is_vtf(file)) {
        put_reversed(greys, size, bytes.get());
    } else {
        put_in_order(greys, size, bytes.get());
    }
    save_bytes(file, size, std::move(bytes));
    // Contract: the buffer is not released. One would expect it to be; keeping it for the next call keeps
    // memory bounded. Test: NLayersSave.TheNextHeightMapTakesTheBufferOfTheLast
    retained_heights.keep(std::move(blended));
    return true;
}

} // namespace umbrix_v0
