// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// The files that a process may still open by name.
struct OpenFolders {
    bool all_read = false; ///< Every file may be read, and run.
    std::vector<std::string>
        written{}; ///< Below these folders all may be done. Those that do not exist are left out.
};

/// Leaves this thread, and those that it starts, what @p folders names, with the kernel's Landlock. Files
/// that are open stay what they are. Does nothing on a kernel without it, and refuses as much as an older one
/// knows of. False if nothing is refused.
bool close_folders(OpenFolders const& folders);

} // namespace umbrixlib::toolkit
