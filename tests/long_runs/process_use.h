// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace umbrixlib::test {

/// What a process holds of its machine.
struct ProcessUse {
    long resident_kib = 0;
    long handles = 0;
    long threads = 0;
};

/// Of the process @p process; zeros once it is gone.
inline ProcessUse use_of(pid_t process)
{
    std::filesystem::path const about = "/proc/" + std::to_string(process);
    std::ifstream memory(about / "statm");
    long all_pages = 0;
    long resident_pages = 0;
    memory >> all_pages >> resident_pages;
    auto const entries = [](std::filesystem::path const& folder) {
        std::error_code gone;
        std::filesystem::directory_iterator const first(folder, gone);
        return static_cast<long>(gone ? 0 : std::distance(begin(first), end(first)));
    };
    return {resident_pages * (sysconf(_SC_PAGESIZE) / 1024), entries(about / "fd"), entries(about / "task")};
}

} // namespace umbrixlib::test
