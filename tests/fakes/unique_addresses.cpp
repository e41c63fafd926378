// SPDX-License-Identifier: MIT
// Blocks that were deleted are never handed out again, so that an address names one buffer for the life of
// the test executable and the call log can tell buffers apart. Deleted blocks stay reachable through a chain.
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

namespace {

struct Deleted {
    Deleted* next;
};
std::atomic<Deleted*> deleted_blocks = nullptr;

void bury(void* block)
{
    if (block == nullptr) {
        return;
    }
    auto* const grave = static_cast<Deleted*>(block);
    grave->next = deleted_blocks.load();
    while (!deleted_blocks.compare_exchange_weak(grave->next, grave)) {
    }
}

} // namespace

void* operator new(std::size_t size)
{
    if (void* const block = std::malloc(std::max(size, sizeof(Deleted)))) {
        return block;
    }
    throw std::bad_alloc();
}

void* operator new[](std::size_t size)
{
    return operator new(size);
}

void operator delete(void* block) noexcept
{
    bury(block);
}

void operator delete[](void* block) noexcept
{
    bury(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    bury(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    bury(block);
}
