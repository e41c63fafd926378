// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/failure.h"
#include "toolkit/pictures/picture.h"

#include <filesystem>
#include <string>

namespace umbrixlib::toolkit {

class Encoder;

/// An image format that pictures are written in. Only formats that can be read back are among them.
struct OutputFormat {
    char const* extension;  ///< Lower case, with the dot.
    bool lossless;          ///< What is read back equals what was written.
    bool alpha;             ///< Holds a fourth channel.
    bool powers_of_two;     ///< Width and height have to be powers of two.
    int longest_side;       ///< In texels.
    char const* warning;    ///< Told with every picture written; "" if there is nothing to tell.
    Encoder const* encoder; ///< What writes it.
    unsigned depths;        ///< Types of the samples that it holds, a bit each.
    /// Nothing but heights of a square, in one channel and without a header.
    bool heights_only = false;

    static constexpr unsigned bit_of(SampleType depth) { return 1U << static_cast<unsigned>(depth); }
    bool holds(SampleType depth) const { return (depths & bit_of(depth)) != 0; }
};

/// The format of @p file by its extension in any letter case, or null if pictures cannot be written so.
OutputFormat const* output_format(std::filesystem::path const& file);

/// About an output @p name that would hold something else than the heights which @p format takes.
Failure no_heights(OutputFormat const& format, std::string const& name);

/// About an output @p name that would have an alpha, which @p format has no place for. @p remedy is that of
/// Fault::kNoAlphaInFormat.
Failure no_alpha(OutputFormat const& format, std::string const& name, std::string const& remedy = {});

/// The extensions of all formats, for messages.
std::string output_extensions();

} // namespace umbrixlib::toolkit
