// SPDX-License-Identifier: MIT
#pragma once

#include "decoded_image.h"
#include "job.h"
#include "kind_guess.h"

namespace umbrix_cli {

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

} // namespace umbrix_cli
