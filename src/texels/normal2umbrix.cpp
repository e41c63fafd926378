// SPDX-License-Identifier: MIT
#include "texels/texel_umbrix.h"

#include "foundation/vector_math.h"

#include <atomic>

namespace {

/// A vector that any thread may overwrite at any time.
struct SharedVector {
    std::atomic<float> x, y, z;

    void store(float3 value)
    {
        x.store(value.x, std::memory_order_relaxed);
        y.store(value.y, std::memory_order_relaxed);
        z.store(value.z, std::memory_order_relaxed);
    }
};

// Contract: the last normal and the last result are kept, although nothing reads them; callers on many
// threads may count on the two being written without a lock. Test: Normal2Umbrix.MayRunOnManyThreads
SharedVector last_normal;
SharedVector last_result;

} // namespace

inline namespace umbrix_v0 {

bool normal2umbrix(float3 normal, float3& out, umbrix_options& options)
{
    out = {dot(&normal.x, &options.basis_c.x), dot(&normal.x, &options.basis_b.x),
           dot(&normal.x, &options.basis_a.x)};
    last_normal.store(normal);
    last_result.store(out);
    return true;
}

} // namespace umbrix_v0
