// SPDX-License-Identifier: MIT
#include "host/backend.h"

#include "kernels/bilateral.h"
#include "kernels/gaussian.h"
#include "kernels/light.h"
#include "kernels/normals.h"
#include "kernels/occlusion.h"
#include "kernels/tone.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <tuple>
#include <type_traits>

namespace coralith {
namespace {

/// @p argument as the type that a kernel declares; false if it is of another kind or size.
template <typename T>
bool unpack(Argument const& argument, T& value)
{
    if constexpr (std::is_pointer_v<T>) {
        value = static_cast<T>(argument.memory().handle);
        return argument.is_memory() && value != nullptr;
    } else {
        std::memcpy(&value, argument.bytes(), sizeof value);
        return argument.size() == sizeof value;
    }
}

using Loop = bool (*)(Index items, Arguments arguments, bool threads_allowed);

/// A loop over the items of a kernel, made from its signature.
template <auto kernel>
struct HostLoop;

template <typename... Parameters, void (*kernel)(Index, Parameters...)>
struct HostLoop<kernel> {
    static bool run(Index items, Arguments arguments, bool threads_allowed)
    {
        if (arguments.size() != sizeof...(Parameters)) {
            return false;
        }
        std::tuple<Parameters...> values;
        auto const* next = arguments.begin();
        bool const fit =
            std::apply([&](Parameters&... value) { return (unpack(*next++, value) && ...); }, values);
        if (!fit) {
            return false;
        }
        std::apply([&](Parameters... value) { run_items(items, threads_allowed, value...); }, values);
        return true;
    }

private:
    static void run_items(Index items, bool threads_allowed, Parameters... values)
    {
        if (!threads_allowed) {
            for (Index item = 0; item < items; ++item) {
                kernel(item, values...);
            }
            return;
        }
#pragma omp parallel for schedule(static)
        for (Index item = 0; item < items; ++item) {
            kernel(item, values...);
        }
    }
};

constexpr Loop kLoops[] = {
#define CORALITH_LOOP(constant, name, program) &HostLoop<&kernels::name>::run,
    CORALITH_KERNELS(CORALITH_LOOP)
#undef CORALITH_LOOP
};

} // namespace

Limits HostBackend::limits() const
{
    return {PTRDIFF_MAX, true, true};
}

bool HostBackend::allocate(std::size_t bytes, Memory& memory)
{
    memory.handle = std::malloc(bytes);
    memory.bytes = bytes;
    return memory.handle != nullptr ||
           fail(Failure::kMemory, std::to_string(bytes) + " bytes are not to be had");
}

void HostBackend::release(Memory& memory)
{
    std::free(memory.handle);
    memory = {};
}

bool HostBackend::upload(Memory const& memory, void const* from, std::size_t bytes)
{
    std::memcpy(memory.handle, from, bytes);
    return true;
}

bool HostBackend::download(Memory const& memory, void* to, std::size_t bytes)
{
    std::memcpy(to, memory.handle, bytes);
    return true;
}

bool HostBackend::launch(Kernel kernel, Index items, Arguments arguments)
{
    auto const index = static_cast<std::size_t>(kernel);
    return kLoops[index](items, arguments, threads_allowed_) ||
           fail(Failure::kDevice, std::string("arguments do not fit ") + kKernelNames[index]);
}

} // namespace coralith
