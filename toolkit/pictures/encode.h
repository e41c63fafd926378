// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/compression.h"
#include "toolkit/base/observer.h"
#include "toolkit/pictures/output_format.h"
#include "toolkit/pictures/picture.h"

#include <filesystem>
#include <functional>
#include <span>
#include <string>

namespace umbrixlib::toolkit {

/// Throws a Failure about @p name if @p format cannot hold a picture of this size.
void check_size(OutputFormat const& format, std::string const& name, int width, int height);

/// Writes @p picture, of 8 bits, to @p file, whose extension is that of @p format; an alpha that the format
/// does not hold is left out. Then reads it back, because some encoders report success on a full disk, too: a
/// lossless format has to give the same picture, the others the same size. Failures are about @p name.
void write_picture(std::filesystem::path const& file, OutputFormat const& format, std::string const& name,
                   Picture const& picture, Compression compression, Observer& observer);

/// The same for what @p write writes to @p file and @p reads_as_written looks at when it is on the disk; both
/// say whether all is well.
void write_and_check(std::filesystem::path const& file, std::string const& name,
                     std::function<bool()> const& write, std::function<bool()> const& reads_as_written,
                     Observer& observer);

/// The same for a file that is @p bytes.
void write_bytes(std::filesystem::path const& file, std::string const& name,
                 std::span<std::uint8_t const> bytes, Observer& observer);

} // namespace umbrixlib::toolkit
