// SPDX-License-Identifier: MIT
#pragma once

namespace umbrix_cli {

/// What the tool tells its caller. `--help` and the manual quote these lines.
enum ExitCode : int {
    kDone = 0,        ///< Done.
    kInputFailed = 1, ///< A file could not be read, worked on or written.
    kWrongUsage = 2,  ///< The command line asks for something that no file could make possible.
    kFindings = 3,    ///< A map that `umbrix check` looked at is not sound.
    /// And the number of the signal: stopped by Ctrl-C, a request to end or a closed terminal; nothing is
    /// half done.
    kStoppedBySignal = 128
};

inline constexpr char const* kExitCodesHelp =
    "Exit codes: 0 done, 1 an input or output file failed, 2 wrong "
    "usage, 3 a map is not sound (check), 130 interrupted; 143 and 129 ended by "
    "SIGTERM and SIGHUP.";

} // namespace umbrix_cli
