// SPDX-License-Identifier: MIT
#pragma once

namespace umbrixlib::detail {

/// What the contract's constructor of a stack calls. The functions that load layers from files set it, where
/// they are linked; without them there is nothing to prepare.
extern void (*prepare_picture_files)();

} // namespace umbrixlib::detail
