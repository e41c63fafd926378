// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Replaces the array allocator of the process, the libraries under test included, by one that keeps a
/// record. Include it in one source file of a test.

#include <atomic>
#include <cstdlib>
#include <new>

namespace umbrixlib::test {

/// What it did since `reset`.
struct AllocationWatch {
    std::atomic<int> allocated{0};
    std::atomic<void*> last_allocated{nullptr};
    std::atomic<int> released{0};
    std::atomic<void*> last_released{nullptr};

    void reset()
    {
        allocated = 0;
        last_allocated = nullptr;
        released = 0;
        last_released = nullptr;
    }
};

inline AllocationWatch array_allocations;

} // namespace umbrixlib::test

// Not inlined: a compiler that sees `free` behind a `new[]` takes it for a mistake.

[[gnu::noinline]] void* operator new[](std::size_t size)
{
    void* const block = std::malloc(size != 0 ? size : 1);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    ++umbrixlib::test::array_allocations.allocated;
    umbrixlib::test::array_allocations.last_allocated = block;
    return block;
}

[[gnu::noinline]] void operator delete[](void* block) noexcept
{
    if (block != nullptr) {
        ++umbrixlib::test::array_allocations.released;
        umbrixlib::test::array_allocations.last_released = block;
    }
    std::free(block);
}

[[gnu::noinline]] void operator delete[](void* block, std::size_t) noexcept
{
    operator delete[](block);
}
