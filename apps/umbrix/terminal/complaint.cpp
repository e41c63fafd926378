// SPDX-License-Identifier: MIT
#include "terminal/complaint.h"

#include "toolkit/base/utf8.h"
#include "toolkit_names.h"

#include <fmt/format.h>

namespace umbrix_cli {

std::string error_line(Complaint const& complaint, std::string const& command)
{
    return printable(fmt::format("{}: error: {}: {}; {}", command, complaint.subject, complaint.what(),
                                 complaint.advice)) +
           "\n";
}

} // namespace umbrix_cli
