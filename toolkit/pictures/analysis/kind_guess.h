// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/naming.h"
#include "toolkit/pictures/picture.h"

#include <string>

namespace umbrixlib::toolkit {

/// What a picture is taken for, and what speaks for it, as part of a sentence: "it has no colour".
struct KindGuess {
    Kind kind;
    std::string reason;
};

/// The picture, which has three channels or four, decides where it can: one without colour is no normal map,
/// and one of unit vectors is. Only then the name counts. A coloured picture with no such name is a height
/// map by its brightness.
KindGuess guess_kind(Picture const& picture, std::filesystem::path const& file);

} // namespace umbrixlib::toolkit
