// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

namespace umbrixlib::toolkit {

class Encoder;

/// An image format that pictures are written in. Only formats that can be read back are among them.
struct OutputFormat {
    char const* extension;  ///< Lower case, with the dot.
    bool lossless;          ///< What is read back equals what was written.
    bool alpha;             ///< Holds a fourth channel.
    bool exact_alpha;       ///< And gives it back as it was.
    bool powers_of_two;     ///< Width and height have to be powers of two.
    bool rows_from_the_top; ///< Is handed the top row first; all others the bottom row.
    int longest_side;       ///< In texels.
    char const* warning;    ///< Told with every picture written; "" if there is nothing to tell.
    Encoder const* encoder; ///< What writes it.
};

/// The format of @p file by its extension in any letter case, or null if pictures cannot be written so.
OutputFormat const* output_format(std::filesystem::path const& file);

/// The extensions of all formats, for messages.
std::string output_extensions();

} // namespace umbrixlib::toolkit
