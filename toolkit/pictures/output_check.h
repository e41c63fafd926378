// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace umbrixlib::toolkit {

/// Throws a Failure unless a picture can be written to @p output: a format that can be written, a folder that
/// is there, no file in the way unless @p overwrite is set, and not the input itself. Returns the name to be
/// written, which is that of the file behind @p output if it is a link.
std::filesystem::path check_output(std::filesystem::path const& output, std::filesystem::path const& input,
                                   bool overwrite);

/// The same for a file of any format.
std::filesystem::path check_other_output(std::filesystem::path const& output,
                                         std::filesystem::path const& input, bool overwrite);

} // namespace umbrixlib::toolkit
