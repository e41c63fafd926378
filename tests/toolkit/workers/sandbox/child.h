// SPDX-License-Identifier: MIT
#pragma once

#include <cerrno>
#include <cstdio>
#include <exception>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

/// @file
/// What gives its rights up does so for good, so each test does it in a process of its own.

namespace umbrixlib::test {

/// The exit code of a new process that calls @p body, which returns it; minus the signal that ended it. 200
/// if something was thrown. It has 20 seconds.
template <typename Body>
int in_child(Body&& body)
{
    pid_t const child = fork();
    if (child == 0) {
        alarm(20);
        try {
            _exit(body());
        } catch (std::exception const& error) {
            std::fprintf(stderr, "%s\n", error.what());
            _exit(200);
        }
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

/// The error of a system call, 0 if it succeeds.
template <typename... Words>
int error_of(long call, Words... words)
{
    errno = 0;
    return syscall(call, words...) == -1 ? errno : 0;
}

/// What /proc/self/status says of @p name.
inline std::string status_line(std::string const& name)
{
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word && word != name + ":") {
    }
    status >> word;
    return word;
}

} // namespace umbrixlib::test
