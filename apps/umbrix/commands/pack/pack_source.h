// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/tasks/jobs.h"
#include "toolkit_names.h"

#include <string>

namespace umbrix_cli {

/// What a word of the command line says of a packed picture: R=rough.png, G:invert=gloss.png, B:r=mask.png,
/// A=1.
struct PackSource {
    std::string word;  ///< All of it.
    std::string place; ///< Where it goes: "R".
    PackedChannel channel;
};

/// Parses NAME[:PART[,invert]]=FILE|NUMBER. Whatever stands behind the first = is a file, unless it reads as
/// a number. Throws a UsageError about the word.
PackSource parse_pack_source(std::string const& word);

} // namespace umbrix_cli
