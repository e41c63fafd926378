// SPDX-License-Identifier: MIT
#pragma once

namespace umbrix_cli {

/// What the tool tells its caller. `--help` and the manual quote these lines.
enum ExitCode : int {
    kDone = 0,         ///< Done.
    kInputFailed = 1,  ///< A file could not be read, worked on or written.
    kWrongUsage = 2,   ///< The command line asks for something that no file could make possible.
    kInterrupted = 130 ///< Stopped by Ctrl-C, a request to end or a closed terminal; nothing is half done.
};

inline constexpr char const* kExitCodesHelp =
    "Exit codes: 0 done, 1 an input or output file failed, 2 wrong usage, 130 interrupted.";

} // namespace umbrix_cli
