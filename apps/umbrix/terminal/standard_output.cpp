// SPDX-License-Identifier: MIT
#include "terminal/standard_output.h"

#include "terminal/complaint.h"
#include "toolkit_names.h"

#include <cstdio>

namespace umbrix_cli {

void finish_standard_output()
{
    std::fflush(stdout);
    if (std::ferror(stdout) != 0) {
        throw Complaint("standard output", "it did not take all of the results",
                        "the files are not affected");
    }
}

} // namespace umbrix_cli
