// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <string>

namespace umbrix_cli {

/// Writes @p text and goes on whether or not anybody can read it: a terminal may have been closed, a disk may
/// be full. Nothing in a long run is lost for that.
inline void put_text(std::FILE* stream, std::string const& text)
{
    static_cast<void>(std::fwrite(text.data(), 1, text.size(), stream));
    std::fflush(stream);
}

} // namespace umbrix_cli
