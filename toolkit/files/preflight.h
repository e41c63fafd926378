// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

namespace umbrixlib::toolkit {

/// Throws a Failure unless @p input is there and is a plain file.
/// @param what What it should be: "an image file".
void check_plain_file(std::filesystem::path const& input, std::string const& what);

/// The same unless it can also be read and has something in it.
void check_input(std::filesystem::path const& input, std::string const& what = "an image file");

/// Throws a Failure unless a file can go to @p output: its folder is there, and nothing is in the way but a
/// plain file that @p overwrite allows to be replaced.
/// @param remedy What to do if a folder or the like is in the way.
/// @returns The file to be written: the one behind @p output if that is a link, so that the link stays one.
std::filesystem::path check_output_file(std::filesystem::path const& output, bool overwrite,
                                        std::string const& remedy = "give a file name");

} // namespace umbrixlib::toolkit
