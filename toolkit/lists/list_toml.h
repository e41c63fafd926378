// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <umbrixlib.h>

namespace umbrixlib::toolkit {

/// A list as TOML: a [[job]] for each job, with every field by its name, and below it a [[job.layer]] for
/// each layer. Nothing is lost:
/// - A number is written so that it reads back as the same float. What is no number and has other bits than
///   TOML's nan is a text with its bits, "0xFFC00001".
/// - A text that is no UTF-8 is a table { bytes = "caf%E9.png" }, in which %E9 stands for the byte E9; a % of
///   the text itself is %25 in there.
std::string to_toml(umbrix_list const& list);

/// Appends the jobs in @p file to @p list. A Failure names the job, the field and the line at fault: every
/// field has to be there and fit, and no others may.
void read_toml(std::filesystem::path const& file, umbrix_list& list);

} // namespace umbrixlib::toolkit
