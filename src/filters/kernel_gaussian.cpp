// SPDX-License-Identifier: MIT
#include "filters/kernel_gaussian.h"

#include "common/float_functions.h"
#include "common/rounding.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <vector>

namespace umbrixlib::detail {

namespace {

// ---- How the forms differ ----

enum class FirstPass { kReadsSource, kReadsDestination };

/// What `blur` does by pixel type.
template <typename Pixel>
struct BlurForm;

template <>
struct BlurForm<float> {
    static constexpr bool kHeedsClampEdges = false;
    static constexpr bool kCopiesSourceFirst = false;
    static constexpr FirstPass kFirstPass = FirstPass::kReadsSource;
};

template <>
struct BlurForm<float3> {
    static constexpr bool kHeedsClampEdges = true;
    static constexpr bool kCopiesSourceFirst = true;
    static constexpr FirstPass kFirstPass = FirstPass::kReadsDestination;
};

template <>
struct BlurForm<float4> {
    static constexpr bool kHeedsClampEdges = true;
    static constexpr bool kCopiesSourceFirst = true;
    static constexpr FirstPass kFirstPass = FirstPass::kReadsSource;
};

/// One rounding a tap.
void accumulate(float& sum, float pixel, float weight)
{
    sum = narrow(wide(pixel) * wide(weight) + wide(sum));
}

/// Two roundings a tap, for one component.
void accumulate_component(float& sum, float component, float weight)
{
    float const term = narrow(wide(component) * wide(weight));
    sum = narrow(wide(sum) + wide(term));
}

void accumulate(float3& sum, float3 const& pixel, float weight)
{
    accumulate_component(sum.x, pixel.x, weight);
    accumulate_component(sum.y, pixel.y, weight);
    accumulate_component(sum.z, pixel.z, weight);
}

void accumulate(float4& sum, float4 const& pixel, float weight)
{
    accumulate_component(sum.x, pixel.x, weight);
    accumulate_component(sum.y, pixel.y, weight);
    accumulate_component(sum.z, pixel.z, weight);
    accumulate_component(sum.w, pixel.w, weight);
}

// ---- What they share ----

constexpr double kTwoPi = 6.283185307179586;

/// i * i as an int of 32 bits, which wraps around.
int square(int i)
{
    auto const bits = static_cast<std::uint32_t>(i);
    return static_cast<int>(bits * bits);
}

/// The kernel's array, of the length that @p half_length calls for.
std::unique_ptr<float[]> allocate_kernel(int half_length)
{
    std::int64_t const length = 2 * static_cast<std::int64_t>(half_length) + 1;
    if (length < 1 || length > INT_MAX) {
        throw std::bad_array_new_length();
    }
    return std::make_unique<float[]>(static_cast<std::size_t>(length));
}

struct Kernel {
    Kernel(float const* kernel_weights, int size)
        : weights(kernel_weights), half(size / 2), last(std::min(half, size - half - 1))
    {
    }

    float const* weights;
    std::ptrdiff_t half;
    std::ptrdiff_t last; ///< Offset of the last tap that has a weight.
};

/// Where a tap at @p position reads, in a row of @p width, for the pixel at @p x.
std::ptrdiff_t resolve(std::ptrdiff_t position, std::ptrdiff_t x, std::ptrdiff_t width, bool clamp_edges)
{
    if (position >= 0 && position < width) {
        return position;
    }
    if (!clamp_edges) {
        // Contract: the remainder of the pixel's own position, which is that position; the remainder of the
        // tap's, around the image, is expected. Test: KernelGaussian.WithoutClampingATapOutsideReadsTheCentre
        return x;
    }
    return position < 0 ? 0 : width - 1;
}

/// The weighted sum around pixel @p x of a row.
template <typename Pixel>
Pixel convolve(Kernel const& kernel, Pixel const* row, std::ptrdiff_t x, std::ptrdiff_t width,
               bool clamp_edges)
{
    Pixel sum = {};
    for (std::ptrdiff_t k = -kernel.half; k <= kernel.last; ++k) {
        float const weight = kernel.weights[kernel.half + k];
        if (weight != 0.0f) {
            accumulate(sum, row[resolve(x + k, x, width, clamp_edges)], weight);
        }
    }
    return sum;
}

/// The form for several components: on the caller's thread, every pixel in its place.
template <typename Pixel>
void convolve_in_place_order(Kernel const& kernel, Pixel const* source, Pixel* destination,
                             std::ptrdiff_t width, std::ptrdiff_t height, bool clamp_edges)
{
    for (std::ptrdiff_t y = 0; y < height; ++y) {
        for (std::ptrdiff_t x = 0; x < width; ++x) {
            destination[y + x * height] = convolve(kernel, source + y * width, x, width, clamp_edges);
        }
    }
}

/// The form for one component: rows on several threads, and the pixels of a row on a nested team, whose
/// threads take their places from one counter.
void convolve_on_threads(Kernel const& kernel, float const* source, float* destination, std::ptrdiff_t width,
                         std::ptrdiff_t height, bool clamp_edges)
{
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t y = 0; y < height; ++y) {
        std::atomic<std::ptrdiff_t> next_place = y;
#pragma omp parallel for schedule(static)
        for (std::ptrdiff_t x = 0; x < width; ++x) {
            float const sum = convolve(kernel, source + y * width, x, width, clamp_edges);
            destination[next_place.fetch_add(height, std::memory_order_relaxed)] = sum;
        }
    }
}

template <typename Pixel>
void blur_image(Pixel* source, Pixel* destination, int width, int height, float radius, bool clamp_edges)
{
    using Form = BlurForm<Pixel>;
    float* kernel = nullptr;
    int const length = makeKernel(kernel, radius);
    std::unique_ptr<float[]> const kernel_owner(kernel);
    if (width < 1 || height < 1) {
        return;
    }
    auto const pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    std::vector<Pixel> scratch =
        Form::kCopiesSourceFirst ? std::vector<Pixel>(source, source + pixels) : std::vector<Pixel>(pixels);
    if (Form::kCopiesSourceFirst && source != destination) {
        std::copy_n(source, pixels, destination);
    }
    Pixel* const input = Form::kFirstPass == FirstPass::kReadsSource ? source : destination;
    int const clamp = Form::kHeedsClampEdges && clamp_edges ? 1 : 0;
    convolveAndTranspose(kernel, input, scratch.data(), width, height, length, clamp);
    convolveAndTranspose(kernel, scratch.data(), destination, height, width, length, clamp);
}

} // namespace

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

int makeKernel(float*& kernel, float radius)
{
    int const n = to_int(wide(umbrixlib::detail::ceil(radius)));
    std::unique_ptr<float[]> weights = allocate_kernel(n);
    int const length = 2 * n + 1;

    float const sigma = narrow(wide(radius) / 3.0);
    float const two_sigma_squared = narrow(wide(sigma) * 2.0 * wide(sigma));
    // The root covers sigma as well: sqrt(2 * pi * sigma). Up to rounding it cancels in the sum.
    float const norm = narrow(std::sqrt(wide(narrow(wide(sigma) * kTwoPi))));
    float const radius_squared = narrow(wide(radius) * wide(radius));

    float sum = 0.0f;
    for (int i = 0; i < length; ++i) {
        auto const distance = static_cast<float>(square(i - n));
        float& weight = weights[static_cast<std::size_t>(i)];
        if (distance > radius_squared) {
            weight = 0.0f;
        } else {
            float const exponent = narrow(wide(-distance) / wide(two_sigma_squared));
            weight = narrow(wide(umbrixlib::detail::exp(exponent)) / wide(norm));
        }
        sum = narrow(wide(sum) + wide(weight));
    }
    for (int i = 0; i < length; ++i) {
        float& weight = weights[static_cast<std::size_t>(i)];
        weight = narrow(wide(weight) / wide(sum));
    }
    kernel = weights.release();
    return length;
}

void convolveAndTranspose(float* kernel, float* source, float* destination, int width, int height, int size,
                          int clamp_edges)
{
    convolve_on_threads({kernel, size}, source, destination, width, height, clamp_edges != 0);
}

void convolveAndTranspose(float* kernel, float3* source, float3* destination, int width, int height, int size,
                          int clamp_edges)
{
    convolve_in_place_order({kernel, size}, source, destination, width, height, clamp_edges != 0);
}

void convolveAndTranspose(float* kernel, float4* source, float4* destination, int width, int height, int size,
                          int clamp_edges)
{
    convolve_in_place_order({kernel, size}, source, destination, width, height, clamp_edges != 0);
}

void blur(float* source, float* destination, int width, int height, float radius, bool clamp_edges)
{
    blur_image(source, destination, width, height, radius, clamp_edges);
}

void blur(float3* source, float3* destination, int width, int height, float radius, bool clamp_edges)
{
    blur_image(source, destination, width, height, radius, clamp_edges);
}

void blur(float4* source, float4* destination, int width, int height, float radius, bool clamp_edges)
{
    blur_image(source, destination, width, height, radius, clamp_edges);
}

} // namespace umbrix_v0
