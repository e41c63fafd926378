// SPDX-License-Identifier: MIT
#pragma once

#include "terminal/put_text.h"
#include "toolkit/base/json_text.h"
#include "toolkit/base/utf8.h"
#include "toolkit_names.h"

#include <cstdio>
#include <fmt/format.h>
#include <string>
#include <unistd.h>
#include <utility>

namespace umbrix_cli {

/// Of stdout or stderr: InterruptibleOutput makes them streams that tell no descriptor.
inline bool is_terminal(std::FILE* stream)
{
    return isatty(stream == stdout ? STDOUT_FILENO : STDERR_FILENO) != 0;
}

/// @p text as @p stream takes it. On a terminal nothing in it, a name of a file above all, controls the
/// terminal, hides, or breaks the line. A script gets it as it is.
inline std::string shown_on(std::FILE* stream, std::string const& text)
{
    return is_terminal(stream) ? printable(text) : text;
}

inline void put_line(std::FILE* stream, std::string const& text)
{
    put_text(stream, shown_on(stream, text) + "\n");
}

/// A line on standard output.
template <typename... Values>
void say(fmt::format_string<Values...> format, Values&&... values)
{
    put_line(stdout, fmt::format(format, std::forward<Values>(values)...));
}

/// The same on standard error.
inline void say_note(std::string const& command, std::string const& text)
{
    put_line(stderr, fmt::format("{}: note: {}", command, text));
}

/// A name of a file on standard output, as it is, with a zero byte behind it.
inline void put_name(std::string const& name)
{
    put_text(stdout, name + '\0');
}

/// JSON on standard output, for a terminal with numbers for what would not be seen there.
inline void say_json(nlohmann::ordered_json const& value, int indent = -1)
{
    Unseen const unseen = is_terminal(stdout) ? Unseen::kAsNumbers : Unseen::kAsTheyAre;
    put_text(stdout, to_json_text(value, indent, unseen) + "\n");
}

} // namespace umbrix_cli
