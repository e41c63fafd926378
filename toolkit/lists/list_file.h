// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <umbrixlib.h>

namespace umbrixlib::toolkit {

/// Reads a work list that is whole. The library takes any bytes for one, so the file is checked first; a
/// Failure tells what is wrong.
void read_list(std::filesystem::path const& file, umbrix_list& list);

/// Writes @p list into @p file: under a temporary name, checked, then renamed. However it ends, there is
/// either the old file or the new one.
/// @param overwrite Replace the file if it exists.
void write_list(umbrix_list& list, std::filesystem::path const& file, bool overwrite);

/// Place in @p list of the job that a user calls @p number, counted from 1. A Failure if there is none.
int index_of_job(umbrix_list& list, std::string const& file, int number);

/// "3 jobs".
std::string count_of_jobs(int jobs);

} // namespace umbrixlib::toolkit
