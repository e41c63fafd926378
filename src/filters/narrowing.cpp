// SPDX-License-Identifier: MIT
#include "filters/narrowing_internal.h"

#include <algorithm>

namespace umbrixlib {

namespace detail {

namespace {

/// Calls @p body with the first texel and the number of texels of each block, on all threads.
template <typename Body>
void for_blocks(std::ptrdiff_t texels, Body&& body)
{
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t first = 0; first < texels; first += kByteBlock) {
        body(first, std::min(kByteBlock, texels - first));
    }
}

} // namespace

/// Compilers take many values at once in each of the three loops, and not in one of all three.
void to_map_bytes(float const* values, std::ptrdiff_t count, unsigned char* bytes)
{
    float limited[3 * kByteBlock];
    int whole[3 * kByteBlock];
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        float const from_zero = values[i] > 0.0f ? values[i] : 0.0f;
        limited[i] = from_zero < 1.0f ? from_zero : 1.0f;
    }
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        whole[i] = static_cast<int>(wide(limited[i]) * 255.0);
    }
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        bytes[i] = static_cast<unsigned char>(whole[i]);
    }
}

/// The same in two loops. Values far from -1..1, which a conversion may not hold, go one by one.
void to_normal_bytes(float const* components, std::ptrdiff_t count, unsigned char* bytes)
{
    constexpr float kFar = 1000.0f;
    int whole[3 * kByteBlock];
    int near = 1;
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        near &= static_cast<int>(components[i] > -kFar) & static_cast<int>(components[i] < kFar);
    }
    if (near == 0) {
        for (std::ptrdiff_t i = 0; i < count; ++i) {
            bytes[i] = normal_byte(components[i]);
        }
        return;
    }
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        whole[i] = static_cast<int>((wide(components[i]) + 1.0) * 0.5 * 255.0);
    }
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        bytes[i] = static_cast<unsigned char>(static_cast<unsigned>(whole[i]) & 0xffU);
    }
}

} // namespace detail

using namespace detail;

void map_to_bytes(float4 const* map, std::ptrdiff_t texels, int channels, unsigned char* bytes)
{
    for_blocks(texels, [=](std::ptrdiff_t first, std::ptrdiff_t count) {
        float values[3 * kByteBlock];
        unsigned char of_values[3 * kByteBlock];
        for (int channel = 0; channel < channels; ++channel) {
            for (std::ptrdiff_t i = 0; i < count; ++i) {
                values[i] = (&map[first + i].x)[channel];
            }
            to_map_bytes(values, count, of_values);
            for (std::ptrdiff_t i = 0; i < count; ++i) {
                bytes[(first + i) * channels + channel] = of_values[i];
            }
        }
    });
}

void map_to_bytes(float3 const* map, std::ptrdiff_t texels, unsigned char* bytes)
{
    for_blocks(texels, [=](std::ptrdiff_t first, std::ptrdiff_t count) {
        to_map_bytes(&map[first].x, 3 * count, bytes + 3 * first);
    });
}

void normals_to_bytes(float3 const* normals, std::ptrdiff_t texels, unsigned char* bytes)
{
    for_blocks(texels, [=](std::ptrdiff_t first, std::ptrdiff_t count) {
        to_normal_bytes(&normals[first].x, 3 * count, bytes + 3 * first);
    });
}

void heights_to_bytes(float const* heights, std::ptrdiff_t texels, unsigned char* bytes)
{
    HeightStretch const stretch(heights, texels);
    for_blocks(texels, [=, &stretch](std::ptrdiff_t first, std::ptrdiff_t count) {
        for (std::ptrdiff_t i = first; i < first + count; ++i) {
            bytes[i] = stretch.byte(heights[i]);
        }
    });
}

void stretch_heights(float* heights, std::ptrdiff_t texels)
{
    HeightStretch const stretch(heights, texels);
    for_blocks(texels, [=, &stretch](std::ptrdiff_t first, std::ptrdiff_t count) {
        for (std::ptrdiff_t i = first; i < first + count; ++i) {
            heights[i] = stretch.is_flat() ? 0.0f : stretch(heights[i]);
        }
    });
}

} // namespace umbrixlib
