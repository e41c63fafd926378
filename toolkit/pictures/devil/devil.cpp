// SPDX-License-Identifier: MIT
#include "toolkit/pictures/devil/devil.h"

#include "toolkit/pictures/devil/devil_reading.h"

#include <IL/il.h>
#include <cstdlib>

namespace umbrixlib::toolkit {

namespace {

void* ILAPIENTRY zeroed_memory(ILsizei const size)
{
    return std::calloc(1, size);
}

void ILAPIENTRY release(void const* memory)
{
    std::free(const_cast<void*>(memory));
}

} // namespace

void start_devil()
{
    // What a file that was cut short leaves of a picture is black, and the same in every run.
    ilSetMemory(zeroed_memory, release);
    ilInit();
    watch_devil_reading();
    ilEnable(IL_FILE_OVERWRITE);
    ilEnable(IL_ORIGIN_SET);
    ilOriginFunc(IL_ORIGIN_LOWER_LEFT);
}

void stop_devil()
{
    ilShutDown();
}

} // namespace umbrixlib::toolkit
