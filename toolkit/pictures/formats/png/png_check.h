// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"

#include <filesystem>

namespace umbrixlib::toolkit {

/// Whether @p file is, to its last byte, what our encoder makes of @p picture. Reads it on all threads.
///
/// The rows are unpacked by libdeflate and compared as they are filtered: a row says the same as one of the
/// picture exactly if both are filtered to the same bytes and the rows above them say the same.
bool png_holds(std::filesystem::path const& file, Picture const& picture);

} // namespace umbrixlib::toolkit
