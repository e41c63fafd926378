// SPDX-License-Identifier: MIT
#pragma once

namespace umbrixlib::toolkit {

/// What a job is at. Where it ends all of a sudden, the reason follows from it.
enum class Phase {
    kReading,       ///< Decoding a file.
    kMaking,        ///< The work itself.
    kWriting,       ///< Encoding the output.
    kChecking,      ///< Reading the output back.
    kOpeningDevice, ///< Starting a graphics driver.
};

} // namespace umbrixlib::toolkit
