// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace umbrixlib::toolkit {

/// Writes a commented stack file to @p file that blends shipped example textures. They are looked for in and
/// above the file's folder, then in and above @p further. Returns false if they were found nowhere: then the
/// names in the file are those beside the shipped example.
/// @param further   A whole path, that of the front end's program, say.
/// @param overwrite Whether an existing file is replaced; if not, it is a Failure.
bool write_example_stack(std::filesystem::path const& file, std::filesystem::path const& further,
                         bool overwrite);

} // namespace umbrixlib::toolkit
