// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/compression.h"
#include "toolkit/base/observer.h"
#include "toolkit/pictures/output_format.h"
#include "toolkit/pictures/picture.h"

#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// Throws a Failure about @p name if @p format cannot hold a picture of this size.
void check_size(OutputFormat const& format, std::string const& name, int width, int height);

/// Writes @p picture, of 8 bits, to @p file, whose extension is that of @p format; an alpha that the format
/// does not hold is left out. Then reads it back, because some encoders report success on a full disk, too: a
/// lossless format has to give the same picture, the others the same size. Failures are about @p name.
void write_picture(std::filesystem::path const& file, OutputFormat const& format, std::string const& name,
                   Picture const& picture, Compression compression, Observer& observer);

/// The parts of a file, in its order.
using FileParts = std::vector<std::span<std::uint8_t const>>;

/// The same for a file that consists of @p parts, to the byte.
void write_parts(std::filesystem::path const& file, std::string const& name, FileParts const& parts,
                 Observer& observer);

} // namespace umbrixlib::toolkit
