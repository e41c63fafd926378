// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/decoded_image.h"
#include "toolkit/tasks/jobs.h"

namespace umbrixlib::toolkit {

/// The picture that a DecodeJob has left in its output. A Failure about the job's input if the file and the
/// report do not fit each other or the job's limit: a picture may have taken its decoder over.
DecodedImage decoded_samples(DecodeJob const& job, DecodeReport const& report);

} // namespace umbrixlib::toolkit
