// SPDX-License-Identifier: MIT
// Wall time of the command line from its start to its end: the help, a look at a picture, a small map.
#include "measure/clocks.h"
#include "measure/idleness.h"
#include "measure/maps.h"
#include "measure/record.h"
#include "measure/rounds.h"
#include "temporary_folder.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace umbrixlib::bench;

/// Runs the tool with its output thrown away.
void run_tool(std::vector<std::string> words)
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
    if (posix_spawn(&process, UMBRIX_TOOL, &actions, nullptr, arguments.data(), environ) == 0) {
        waitpid(process, &status, 0);
    }
    posix_spawn_file_actions_destroy(&actions);
    if (status != 0) {
        std::fprintf(stderr, "the tool failed: %s\n", arguments[1]);
        std::exit(1);
    }
}

} // namespace

int main()
{
    umbrixlib::test::TemporaryFolder const folder;
    std::string const input = (folder / "in.tga").string();
    std::string const output = (folder / "out.tga").string();
    write_picture(input, "terrain", 64, 64);
    OthersWatch const others;
    Effort const effort = {41, 41, 0.0, 0.0};
    Seconds const seconds = interleaved({{"--help",
                                          [&] {
                                              run_tool({"umbrix", "--help"});
                                          }},
                                         {"info",
                                          [&] {
                                              run_tool({"umbrix", "info", input});
                                          }},
                                         {"map of 64 x 64",
                                          [&] {
                                              run_tool({"umbrix", "map", input, "-o", output, "--overwrite"});
                                          }}},
                                        effort, wall_seconds);
    print({{"what", "start_up"}, {"seconds", seconds}, {"others", others.share()}});
}
