// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/observer.h"
#include "toolkit/pictures/decoded_image.h"
#include "toolkit/pictures/kind_guess.h"

#include <string>

namespace umbrixlib::toolkit {

/// A picture to be read.
struct Source {
    std::string file;
    std::string name; ///< What messages call it.
    double max_texels;
};

/// Decodes a picture within its limit on texels, which limits the decoder's memory, too.
DecodedImage decode_input(Source const& source, Observer& observer);

/// A decoded picture, after the notes that every user should see.
struct PreparedInput {
    int width;
    int height;
    bool has_alpha;
    std::string description; ///< As DecodedImage has it.
    KindGuess guess;
    Picture picture; ///< Of three channels or, if the file has an alpha, four; in the file's sample type.
};

PreparedInput prepare_input(Source const& source, Observer& observer);

/// For a picture that is taken for normals: floats are vectors if the picture tells so or, where it tells
/// nothing, if any colour lies below 0. They are encoded as colours are, with a note. Colours of all else are
/// 0 to 1 already.
void take_for_normals(PreparedInput& input, std::string const& name, Observer& observer);

} // namespace umbrixlib::toolkit
