// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/decoded_image.h"
#include "toolkit/pictures/kind_guess.h"
#include "toolkit/tasks/job.h"

namespace umbrixlib::toolkit {

/// Decodes the input of a job. The job's limits hold: on texels, and so on memory while the decoder is at
/// work.
DecodedImage decode_input(Job const& job);

/// The input of a job, decoded within the job's limits, with the notes that every user should see sent.
struct PreparedInput {
    int width;
    int height;
    bool has_alpha;
    std::string description; ///< As DecodedImage has it.
    KindGuess guess;
    Picture picture; ///< With alpha if the file has one.
};
PreparedInput prepare_input(Job const& job);

} // namespace umbrixlib::toolkit
