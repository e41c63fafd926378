// SPDX-License-Identifier: MIT
#pragma once

#include "common/vector_types.h"
#include "foundation/retained_buffer_internal.h"
#include "umbrix/umbrix_options.h"

#include <algorithm>
#include <cstddef>

namespace umbrixlib::detail {

/// The arrays that runs leave in `ao_map`, `normal_map` and `height_copy` of an option record. Each run over
/// the same object takes those of the run before, as far as they have the room; what the fields point at when
/// this object goes is the caller's.
///
/// A front end may take an array between two runs: it changes the field, and the array is its own.
class KeptBuffers {
public:
    explicit KeptBuffers(umbrix_options& options) : options_(options) {}
    KeptBuffers(KeptBuffers const&) = delete;
    KeptBuffers& operator=(KeptBuffers const&) = delete;
    ~KeptBuffers()
    {
        ao_map_.data.release();
        normal_map_.data.release();
        height_copy_.data.release();
    }

    // Each sets its field to an array of zeros.
    void make_ao_map(std::size_t texels) { make(options_.ao_map, ao_map_, texels); }
    void make_normal_map(std::size_t texels) { make(options_.normal_map, normal_map_, texels); }
    void make_height_copy(std::size_t texels) { make(options_.height_copy, height_copy_, texels); }

    /// Releases the array in `ao_map`.
    void drop_ao_map()
    {
        if (options_.ao_map == ao_map_.data.get()) {
            ao_map_ = {};
        }
    }

private:
    template <typename T>
    static void make(T*& field, Buffer<T>& buffer, std::size_t texels)
    {
        if (field != buffer.data.get()) {
            buffer.data.release();
            buffer = {};
        }
        field = nullptr;
        buffer.reserve(texels);
        std::fill_n(buffer.data.get(), texels, T{});
        field = buffer.data.get();
    }

    umbrix_options& options_;
    Buffer<float3> ao_map_;
    Buffer<float3> normal_map_;
    Buffer<float> height_copy_;
};

} // namespace umbrixlib::detail
