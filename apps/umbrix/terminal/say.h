// SPDX-License-Identifier: MIT
#pragma once

#include "terminal/put_text.h"
#include "toolkit/base/utf8.h"
#include "toolkit_names.h"

#include <fmt/format.h>
#include <string>
#include <utility>

namespace umbrix_cli {

/// A line for people on standard output. Whatever stands in it, a name of a file above all, controls no
/// terminal and breaks no line.
template <typename... Values>
void say(fmt::format_string<Values...> format, Values&&... values)
{
    put_text(stdout, printable(fmt::format(format, std::forward<Values>(values)...)) + "\n");
}

/// The same on standard error.
inline void say_note(std::string const& command, std::string const& text)
{
    put_text(stderr, printable(fmt::format("{}: note: {}", command, text)) + "\n");
}

} // namespace umbrix_cli
