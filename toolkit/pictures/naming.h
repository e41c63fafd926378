// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/kind.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace umbrixlib::toolkit {

/// Where the result goes when no name is given: beside @p input, with "_Umbrix" or the like before the
/// extension. One of the tags _N, _NORMAL, _H and _HEIGHT at the end of the name gives way to it. The
/// extension stays if pictures can be written so without loss; else it is ".png".
/// @param extension Of the output, whatever the input's is; empty: as above.
std::filesystem::path default_output(std::filesystem::path const& input, std::string const& suffix,
                                     std::string const& extension = {});

/// The same for a picture that is packed of others: the ending of the input's name, as ending_of_name() has
/// it, gives way to the suffix.
std::filesystem::path packed_output(std::filesystem::path const& input, std::string const& suffix,
                                    std::string const& extension);

/// What the name says about the picture: a word such as "normal" or "height", or one of the tags _N and _H at
/// its end, in any letter case. Nothing if it has words for both.
struct NameHint {
    Kind kind;
    std::string word; ///< As it stands in the name.
};
std::optional<NameHint> hint_of_name(std::filesystem::path const& file);

/// An ending by which the pictures of a material are told apart.
struct NameEnding {
    std::string_view text;        ///< In small letters: "_nor_dx".
    std::optional<Kind> kind;     ///< Empty: no map is made of such a picture, which has colours or the like.
    std::optional<NormalY> green; ///< Of a normal map whose ending settles it.
};

/// The ending of a name before its extension, in any letter case; a resolution such as _2k may follow it.
/// Null if it is none of those known.
NameEnding const* ending_of_name(std::filesystem::path const& file);

} // namespace umbrixlib::toolkit
