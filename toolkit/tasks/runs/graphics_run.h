// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/observer.h"
#include "toolkit/settings/graphics_settings.h"
#include "toolkit/tasks/reports.h"

#include <string>
#include <umbrixlib.h>

namespace umbrixlib::toolkit {

/// Selects the device for a run on @p file, and tells what the user should know about it. A Failure if there
/// is no such device.
DeviceReport open_device(Graphics const& graphics, std::string const& file, Observer& observer);

/// Notes that stages were run on the processor instead, if they were.
void note_fallback(std::string const& file, Observer& observer);

/// How the library is asked to run on @p device.
GPU_opt gpu_options(int device);

/// Whether a run on a graphics processor turns the heights over that it reads.
/// @param channels Of the picture.
bool heights_are_inverted(umbrix_options const& options, int channels);

/// Changes @p options so that a run on a graphics processor takes the relief as a run on the processor does
/// with what they were. The grading of the heights does it: limits from high to low turn them over and scale
/// them, in steps of 1/255; the contrast scales by what is left. It moves them by a constant, too, which no
/// ray and no normal sees.
void match_processor(umbrix_options& options, int channels);

} // namespace umbrixlib::toolkit
