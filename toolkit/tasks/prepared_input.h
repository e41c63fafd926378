// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/observer.h"
#include "toolkit/pictures/analysis/kind_guess.h"
#include "toolkit/pictures/decoded_image.h"
#include "toolkit/pictures/heights/height_reading.h"

#include <optional>
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

/// Of a picture that has to be as large as another.
struct PictureSize {
    int width;
    int height;

    bool operator==(PictureSize const&) const = default;
};

/// A Failure about @p name unless it is as large as @p other, which @p what names: "the map".
void check_same_size(std::string const& name, PictureSize size, std::string const& what, PictureSize other);

/// A decoded picture, after the notes that every user should see.
struct PreparedInput {
    int width;
    int height;
    bool has_alpha;
    std::string description; ///< As DecodedImage has it.
    SampleType type;         ///< Of the file's samples, whatever the picture has later.
    KindGuess guess;
    Picture picture; ///< Of three channels or, if the file has an alpha, four; in the file's sample type.
};

/// Whether the colours are vectors, -1 to 1: as the picture tells, or else by what they look like.
bool are_vectors(Picture const& picture, std::string const& name);

/// Tells where what the picture looks like and the ending of its name disagree, as that deserves a look.
void note_unlike_its_name(std::string const& file, KindGuess const& guess, Observer& observer);

/// Tells that a picture is taken for heights that looks like normals, if it does.
void note_normals_as_heights(std::string const& file, KindGuess const& guess, Observer& observer);

PreparedInput prepare_input(Source const& source, Observer& observer);

/// The same for a picture that is in memory already. Of @p source the file may not exist; its name can tell
/// what the picture is.
PreparedInput prepare_image(DecodedImage image, Source const& source, Observer& observer);

/// For a picture that is taken for heights: they are 0 to 1 from now on. Returns what became 0 and 1, if that
/// is not 0 and 1. A Failure if the picture has no such heights.
std::optional<HeightRange> take_for_heights(PreparedInput& input, HeightReading const& reading,
                                            std::string const& name, Observer& observer);

/// For a picture that is taken for normals: floats are vectors if the picture tells so or, where it tells
/// nothing, if any colour lies below 0. They are encoded as colours are, with a note. Colours of all else are
/// 0 to 1 already. Its heights are in its alpha; they are read, and the range is returned, as above.
std::optional<HeightRange> take_for_normals(PreparedInput& input, HeightReading const& reading,
                                            std::string const& name, Observer& observer);

/// For a picture of any kind that goes into whole numbers, which hold nothing below 0: vectors in floats, as
/// the picture tells or looks, are encoded as colours are, with a note. All else stays.
void encode_vectors(Picture& picture, std::string const& name, Observer& observer);

} // namespace umbrixlib::toolkit
