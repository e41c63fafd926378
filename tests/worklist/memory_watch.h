// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Replaces the allocator of the process, the libraries under test included, by one that knows how much it
/// has given out. Include it in one source file of a test.

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace umbrixlib::test {

/// Bytes given out and not taken back, now and at most; for tests of one thread.
struct MemoryWatch {
    std::size_t live = 0;
    std::size_t peak = 0;
};

inline MemoryWatch memory_watch;

} // namespace umbrixlib::test

// Not inlined: a compiler that sees `free` behind a `new` takes it for a mistake.

[[gnu::noinline]] void* operator new(std::size_t size)
{
    void* const block = std::malloc(size != 0 ? size : 1);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    auto& watch = umbrixlib::test::memory_watch;
    watch.live += malloc_usable_size(block);
    watch.peak = std::max(watch.peak, watch.live);
    return block;
}

[[gnu::noinline]] void operator delete(void* block) noexcept
{
    umbrixlib::test::memory_watch.live -= block != nullptr ? malloc_usable_size(block) : 0;
    std::free(block);
}

[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept
{
    operator delete(block);
}
