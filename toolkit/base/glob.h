// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// Whether @p name, a name without folders, is one that @p pattern describes: *, ? and [...], in any letter
/// case. A name that begins with a dot only matches a pattern that does.
bool matches(std::string const& pattern, std::string const& name);

/// Whether @p text has something to be expanded in it.
bool has_wildcards(std::string const& text);

/// What exists by the names that @p pattern describes, in the order of the names. Its folders may have
/// wildcards, too.
std::vector<std::filesystem::path> expand(std::filesystem::path const& pattern);

/// The part of @p pattern before the first component with a wildcard; may be empty.
std::filesystem::path fixed_part(std::filesystem::path const& pattern);

} // namespace umbrixlib::toolkit
