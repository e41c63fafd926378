// SPDX-License-Identifier: MIT
#include "program.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <sstream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace umbrixlib::bench {

std::size_t run_program(std::vector<std::string> words)
{
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    int status = 1;
    rusage used{};
    if (posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(), environ) == 0) {
        wait4(process, &status, 0, &used);
    }
    posix_spawn_file_actions_destroy(&actions);
    if (status != 0) {
        std::fprintf(stderr, "%s failed: %s\n", arguments[0], arguments[1]);
        std::exit(1);
    }
    return static_cast<std::size_t>(used.ru_maxrss) * 1024;
}

bool has_program(std::string const& name)
{
    char const* const folders = std::getenv("PATH");
    std::istringstream path(folders != nullptr ? folders : "");
    for (std::string folder; std::getline(path, folder, ':');) {
        if (access((std::filesystem::path(folder) / name).c_str(), X_OK) == 0) {
            return true;
        }
    }
    return false;
}

} // namespace umbrixlib::bench
