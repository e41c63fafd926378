// SPDX-License-Identifier: MIT
#include "boundary/texel_array.h"

#include "boundary/platform.h"

namespace umbrixlib::detail {

void* map_zeros(std::size_t bytes)
{
    return platform::map_zeros(bytes);
}

void release_mapped(void* memory, std::size_t bytes)
{
    platform::unmap_zeros(memory, bytes);
}

} // namespace umbrixlib::detail
