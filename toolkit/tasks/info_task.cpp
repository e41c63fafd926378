// SPDX-License-Identifier: MIT
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/tasks.h"

namespace umbrixlib::toolkit {

InfoReport run(InfoJob const& job, Observer& observer)
{
    DecodedImage const image = decode_input({job.input, job.input, job.max_texels}, observer);
    KindGuess const guess = guess_kind(image.to_picture(false), job.input);
    return {image.width(),       image.height(),
            image.format(),      image.bits_per_channel(),
            image.description(), image.ranges(),
            guess.kind,          guess.reason,
            image.notes(),       image.picture().attributes};
}

} // namespace umbrixlib::toolkit
