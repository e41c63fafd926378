// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Runs the tool and looks at each of its workers when it is about to end, with what debuggers use.

#include "cli/tool.h"

#include <fstream>
#include <map>
#include <sstream>
#include <sys/ptrace.h>

namespace umbrixlib::test {

/// What /proc tells of a worker at its end.
struct SeenWorker {
    std::string name;
    std::map<std::string, std::string> status; ///< "Seccomp": "2".
    std::set<std::string> environment;         ///< "LANG=C".
    std::map<std::string, std::string> limits; ///< "Max core file size": "0 0 bytes", soft and hard.
    std::size_t descriptors = 0;               ///< That are open.
};

/// What /proc tells of a process by its folder there, the first word of each line.
inline std::map<std::string, std::string> status_of(std::filesystem::path const& folder)
{
    std::map<std::string, std::string> status;
    std::string line;
    for (std::ifstream file(folder / "status"); std::getline(file, line);) {
        std::size_t const colon = line.find(':');
        std::istringstream(line.substr(colon + 1)) >> status[line.substr(0, colon)];
    }
    return status;
}

struct TracedRun {
    int code; ///< Exit code, or minus the signal.
    std::vector<SeenWorker> workers;
    std::size_t descriptors = 0; ///< That the tool has open at its end.
};

/// Of a process by its folder in /proc.
inline std::size_t descriptors_of(std::filesystem::path const& folder)
{
    std::error_code error;
    std::filesystem::directory_iterator const all(folder / "fd", error);
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

class TracedTool {
public:
    /// @param environment All that the tool has.
    TracedTool(std::filesystem::path const& folder, Arguments const& arguments,
               std::vector<std::string> const& environment)
    {
        tool_ = fork();
        if (tool_ == 0) {
            become_tool(folder, arguments, environment);
        }
    }

    TracedRun finish()
    {
        constexpr int kOptions = PTRACE_O_TRACEEXIT | PTRACE_O_TRACEFORK | PTRACE_O_TRACEVFORK |
                                 PTRACE_O_TRACECLONE | PTRACE_O_EXITKILL;
        int status = 0;
        waitpid(tool_, &status, 0); // where it begins to be traced
        ptrace(PTRACE_SETOPTIONS, tool_, nullptr, kOptions);
        ptrace(PTRACE_CONT, tool_, nullptr, nullptr);
        for (;;) {
            pid_t const who = waitpid(-1, &status, __WALL);
            if (who < 0) {
                return run_;
            }
            if (!WIFSTOPPED(status)) {
                if (who == tool_) {
                    run_.code = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
                }
                continue;
            }
            if (status >> 8 == (SIGTRAP | PTRACE_EVENT_EXIT << 8)) {
                look_at(who);
            }
            // What stops a process for its tracer is none of the process's signals.
            int const signal = WSTOPSIG(status);
            bool const is_own = signal != SIGTRAP && signal != SIGSTOP;
            ptrace(PTRACE_CONT, who, nullptr, is_own ? signal : 0);
        }
    }

private:
    [[noreturn]] static void become_tool(std::filesystem::path const& folder, Arguments const& arguments,
                                         std::vector<std::string> const& environment)
    {
        auto const pointers = [](std::vector<std::string> const& texts) {
            std::vector<char*> all;
            for (std::string const& text : texts) {
                all.push_back(const_cast<char*>(text.c_str()));
            }
            all.push_back(nullptr);
            return all;
        };
        Arguments words{"umbrix"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        int const nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(nowhere, STDOUT_FILENO);
        dup2(nowhere, STDERR_FILENO);
        if (chdir(folder.c_str()) != 0 || ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) {
            _exit(126);
        }
        raise(SIGSTOP);
        execve(UMBRIX_TOOL, pointers(words).data(), pointers(environment).data());
        _exit(127);
    }

    /// Keeps what there is to see, if it is a worker and not one of its threads.
    void look_at(pid_t process)
    {
        std::filesystem::path const folder = "/proc/" + std::to_string(process);
        std::error_code error;
        std::string const program = std::filesystem::read_symlink(folder / "exe", error).filename();
        SeenWorker seen;
        seen.status = status_of(folder);
        std::string line;
        if (process == tool_) {
            run_.descriptors = descriptors_of(folder);
        }
        if (program != "umbrix-worker" || seen.status["Tgid"] != std::to_string(process)) {
            return;
        }
        std::getline(std::ifstream(folder / "comm"), seen.name);
        for (std::ifstream file(folder / "environ"); std::getline(file, line, '\0');) {
            seen.environment.insert(line);
        }
        constexpr std::size_t kNameWidth = 26;
        for (std::ifstream file(folder / "limits"); std::getline(file, line);) {
            std::istringstream words(line.substr(kNameWidth));
            std::string soft;
            std::string hard;
            words >> soft >> hard;
            seen.limits[line.substr(0, line.find("  "))] = soft + " " + hard;
        }
        seen.descriptors = descriptors_of(folder);
        run_.workers.push_back(seen);
    }

    pid_t tool_;
    TracedRun run_{-1, {}, 0};
};

} // namespace umbrixlib::test
