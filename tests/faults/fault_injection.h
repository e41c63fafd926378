// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Makes calls of the system fail in a program that a test runs: whatever would put something into the files
/// below a folder asks the test first.

#include "system_call_watch.h"

#include <cerrno>
#include <fstream>

namespace umbrixlib::test {

struct Fault {
    std::size_t first = 0; ///< The call that fails, counted from 0.
    bool lasts = false;    ///< All later ones, too, as on a disk that is full.
    int error = 0;         ///< ENOSPC, ...
};

class FaultInjection {
public:
    FaultInjection(std::filesystem::path const& folder, Fault fault)
        : folder_(std::filesystem::canonical(folder).string() + '/'), fault_(fault)
    {
    }

    SystemCallWatch& watch() { return watch_; }

    /// How many calls there were that could fail.
    std::size_t calls() const { return calls_; }

private:
    static inline std::vector<int> const kWatched
    {
        SYS_write, SYS_pwrite64, SYS_writev, SYS_fsync, SYS_ftruncate, SYS_close, SYS_openat, SYS_renameat2,
            SYS_renameat, SYS_linkat, SYS_mkdirat,
#if defined(SYS_open)
            SYS_open, SYS_creat, SYS_rename, SYS_link, SYS_mkdir,
#endif
    };

    int decide(seccomp_notif const& asked)
    {
        return puts_something_there(asked) && is_to_fail(calls_++) ? fault_.error : 0;
    }

    bool is_to_fail(std::size_t call) const
    {
        return call == fault_.first || (fault_.lasts && call > fault_.first);
    }

    bool puts_something_there(seccomp_notif const& asked) const
    {
        auto const& words = asked.data.args;
        auto const creates = [](std::uint64_t flags) { return (flags & O_CREAT) != 0; };
        switch (asked.data.nr) {
        case SYS_openat:
            return creates(words[2]) && is_path_below(asked.pid, words[1]);
        case SYS_mkdirat:
            return is_path_below(asked.pid, words[1]);
        case SYS_renameat:
        case SYS_renameat2:
        case SYS_linkat:
            return is_path_below(asked.pid, words[3]);
#if defined(SYS_open)
        case SYS_open:
            return creates(words[1]) && is_path_below(asked.pid, words[0]);
        case SYS_creat:
        case SYS_mkdir:
            return is_path_below(asked.pid, words[0]);
        case SYS_rename:
        case SYS_link:
            return is_path_below(asked.pid, words[1]);
#endif
        case SYS_close:
            return is_file_below(asked.pid, words[0]) && is_open_for_writing(asked.pid, words[0]);
        default:
            return is_file_below(asked.pid, words[0]);
        }
    }

    bool is_file_below(std::uint32_t process, std::uint64_t descriptor) const
    {
        return file_behind(process, descriptor).starts_with(folder_);
    }

    static bool is_open_for_writing(std::uint32_t process, std::uint64_t descriptor)
    {
        std::ifstream info(process_file(process, "fdinfo/" + std::to_string(descriptor)));
        std::string word;
        while (info >> word && word != "flags:") {
        }
        unsigned flags = 0;
        info >> std::oct >> flags;
        return (flags & O_ACCMODE) != O_RDONLY;
    }

    /// A path that does not begin at the root is one in the tool's current folder, which is watched.
    bool is_path_below(std::uint32_t process, std::uint64_t address) const
    {
        char text[4096] = {};
        int const memory = open(process_file(process, "mem").c_str(), O_RDONLY | O_CLOEXEC);
        ssize_t const got = pread(memory, text, sizeof text - 1, static_cast<off_t>(address));
        close(memory);
        return got > 0 && (text[0] != '/' || std::string(text).starts_with(folder_));
    }

    std::string folder_;
    Fault fault_;
    std::atomic<std::size_t> calls_ = 0;
    SystemCallWatch watch_{kWatched, [this](seccomp_notif const& asked) { return decide(asked); }};
};

} // namespace umbrixlib::test
