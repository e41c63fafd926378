// SPDX-License-Identifier: MIT
#include "boundary/message_box.h"

#include "boundary/platform.h"

#include <atomic>

namespace {

std::atomic<message_handler> registered_handler = nullptr;

} // namespace

inline namespace umbrix_v0 {

message_handler set_message_handler(message_handler handler)
{
    return registered_handler.exchange(handler);
}

} // namespace umbrix_v0

namespace umbrixlib::detail {

void show_error_box(char const* text)
{
    constexpr char const* kTitle = "Error";
    if (message_handler const handler = registered_handler.load()) {
        handler(text, kTitle);
    } else {
        platform::show_message(text, kTitle);
    }
}

} // namespace umbrixlib::detail
