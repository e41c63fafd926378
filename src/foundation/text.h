// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Small jobs on zero-terminated text, which is the caller's and not null. Case is that of the C library,
/// byte by byte, in the locale of the process.
///
/// Errors: none reported. Threads: no state.
///
/// `tolower` and `toupper` stand beside the functions of the C library with these names, which take a
/// character. Who passes one of the names on as a function says which is meant: `std::toupper`, or a lambda.

#include "common/export.h"

#include <string>

inline namespace umbrix_v0 {

/// Sets @p size bytes to 0, for which @p text has room; none if @p size is below 1, and null will do then.
UMBRIX_API void strclr(char* text, int size);

/// Index of the last @p c in @p text, -1 if there is none. The terminator does not count.
UMBRIX_API int strrpos(char* const text, char c);

/// Finds where a value starts: behind a marker letter, blanks and double quotes skipped.
///
/// @param kind 1: the marker is the first 'e'; 2: the first 'r'; 3: the second 'e'; any other: there is none.
/// @return The value's index in @p text; -1 without a marker, or if nothing follows it.
///
/// Contract: markers are found in lower case only; letters of either case are expected. Test:
/// Text.FindDriveKnowsLowerCaseMarkersOnly
UMBRIX_API int find_drive(int kind, char const* text);

/// Contract: leaves @p text as it is; lower case is expected. `toupper` does change its text. Test:
/// Text.TolowerLeavesItsTextAlone
UMBRIX_API void tolower(char* const text);

/// Upper-cases @p text in place, and returns a copy of it.
UMBRIX_API std::string toupper(char* text);

} // namespace umbrix_v0
