// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace umbrixlib::toolkit {

/// The program that workers run, umbrix-worker. It is looked for beside the toolkit's own library: where an
/// installation has it, which may have been moved as a whole, then where the build puts it. A Failure if it
/// is in neither place.
std::filesystem::path worker_program();

} // namespace umbrixlib::toolkit
