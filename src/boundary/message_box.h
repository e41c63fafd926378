// SPDX-License-Identifier: MIT
#pragma once

#include "common/export.h"

inline namespace umbrix_v0 {

/// Receives an error box: its text, which may hold line breaks, and its title. Must return, must not throw.
using message_handler = void (*)(char const* text, char const* title);

/// Sends the library's error boxes to @p handler; null restores the default. On Windows the default is a
/// message box, elsewhere one line on standard error. May be called at any time from any thread.
/// @return The handler so far, or null if it was the default.
UMBRIX_API message_handler set_message_handler(message_handler handler);

} // namespace umbrix_v0

namespace umbrixlib::detail {

/// Shows @p text in an error box: no owner window, title "Error", an OK button.
void show_error_box(char const* text);

} // namespace umbrixlib::detail
