// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace umbrixlib::detail {

/// What the tags "_N.", "_NORMAL.", "_H." and "_HEIGHT." are looked for in.
enum class TagSearch {
    kWholePath, ///< Folder names take part: any of them can count as a tag.
    kFileName
};

/// Name of the result that a folder batch makes of @p folder / @p name: a tag taken out, @p suffix put in
/// front of the last '.'. Tags are found in either case.
///
/// Both steps work on the whole path, whatever was searched: without a '.' in the file's name they meet the
/// folders' names. What a tag takes out reaches from the last '_' to the last '.'; nothing, if they stand the
/// other way round.
///
/// Throws std::out_of_range if there is no '.' in the whole path.
std::string output_name(std::string const& folder, std::string const& name, char const* suffix,
                        TagSearch search);

} // namespace umbrixlib::detail
