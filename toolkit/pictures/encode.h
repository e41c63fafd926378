// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/output_format.h"
#include "toolkit/pictures/picture.h"

#include <filesystem>

namespace umbrixlib::toolkit {

/// Throws a Failure if @p format cannot hold a picture of this size.
void check_size(OutputFormat const& format, int width, int height);

/// Writes @p picture, of 8 bits, to @p file, whose extension is that of @p format; an alpha that the format
/// does not hold is left out. Then reads it back, because some encoders report success on a full disk, too: a
/// lossless format has to give the same picture, the others the same size. Failures name "output".
void write_picture(std::filesystem::path const& file, OutputFormat const& format, Picture const& picture);

} // namespace umbrixlib::toolkit
