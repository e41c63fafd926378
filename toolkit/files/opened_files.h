// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <sys/stat.h>

namespace umbrixlib::toolkit {

enum class OpenFor { kReading, kWriting };

/// Opens @p file now, for the calls of open_file() that ask for its name later: a process that has given up
/// the right to open files works on these. If that fails, open_file() fails with the same errno. A file to be
/// written has to be empty and to have no other name, may be read back, and is made if it is not there. Not
/// for several threads at a time.
/// @return False if the system has no room for another open file.
bool open_ahead(std::filesystem::path const& file, OpenFor purpose);

/// A descriptor of @p file for a process that may open none itself, or -1: of a plain file, and for writing
/// one as open_ahead() wants it. The caller closes it.
int open_for_another(std::filesystem::path const& file, OpenFor purpose);

/// What open_for_another() gave in another process counts as opened ahead in this one, which owns
/// @p descriptor from now on.
void take_opened(std::filesystem::path const& file, int descriptor);

/// Closes all that was opened ahead, and forgets the names.
void close_opened_files();

/// A descriptor of @p file at its first byte, which the caller closes, or -1 and errno. All descriptors of a
/// file that was opened ahead share their place in it: one is used at a time. Else the file is opened here.
/// For writing it is made or emptied, and no link is followed.
int open_file(std::filesystem::path const& file, OpenFor purpose);

/// What the system tells of an open file, asked without a name. False if it does not.
bool status_of(int descriptor, struct stat& status);

} // namespace umbrixlib::toolkit
