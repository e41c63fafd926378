// SPDX-License-Identifier: MIT
#include "toolkit/base/give_up.h"

#include <atomic>
#include <cstdlib>
#include <unistd.h>

namespace umbrixlib::toolkit {

namespace {

std::atomic<LastWords> last_words{nullptr};

} // namespace

void set_last_words(LastWords tell)
{
    last_words = tell;
}

void give_up(Failure const& failure)
{
    if (LastWords const tell = last_words) {
        tell(failure);
    }
    _exit(EXIT_FAILURE);
}

} // namespace umbrixlib::toolkit
