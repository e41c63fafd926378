// SPDX-License-Identifier: MIT
// Wall time of the command line from its start to its end: the help, a look at a picture, a small map.
#include "measure/clocks.h"
#include "measure/idleness.h"
#include "measure/maps.h"
#include "measure/program.h"
#include "measure/record.h"
#include "measure/rounds.h"
#include "temporary_folder.h"

using namespace umbrixlib::bench;

int main()
{
    umbrixlib::test::TemporaryFolder const folder;
    std::string const input = (folder / "in.tga").string();
    std::string const output = (folder / "out.tga").string();
    write_picture(input, "terrain", 64, 64);
    OthersWatch const others;
    Effort const effort = {41, 41, 0.0, 0.0};
    Seconds const seconds =
        interleaved({{"--help",
                      [&] {
                          run_program({UMBRIX_TOOL, "--help"});
                      }},
                     {"info",
                      [&] {
                          run_program({UMBRIX_TOOL, "info", input});
                      }},
                     {"map of 64 x 64",
                      [&] {
                          run_program({UMBRIX_TOOL, "map", input, "-o", output, "--overwrite"});
                      }}},
                    effort, wall_seconds);
    print({{"what", "start_up"}, {"seconds", seconds}, {"others", others.share()}});
}
