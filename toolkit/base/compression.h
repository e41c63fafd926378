// SPDX-License-Identifier: MIT
#pragma once

namespace umbrixlib::toolkit {

/// What the writing of a file saves, where the format has a choice: time or bytes. The samples are the same.
enum class Compression {
    kFast,
    kDefault, ///< As small as others make it, and as fast as that allows.
    kSmall
};

} // namespace umbrixlib::toolkit
