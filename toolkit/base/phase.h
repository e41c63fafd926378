// SPDX-License-Identifier: MIT
#pragma once

namespace umbrixlib::toolkit {

/// What a worker is doing, so that its sudden end can be told from.
enum class Phase {
    kReading,       ///< Decoding the input.
    kMaking,        ///< The work itself.
    kWriting,       ///< Encoding the output.
    kChecking,      ///< Reading the output back.
    kOpeningDevice, ///< Starting a graphics driver.
};

} // namespace umbrixlib::toolkit
