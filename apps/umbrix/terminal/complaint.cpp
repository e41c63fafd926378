// SPDX-License-Identifier: MIT
#include "terminal/complaint.h"

#include <fmt/format.h>

namespace umbrix_cli {

std::string error_line(Complaint const& complaint, std::string const& command)
{
    return fmt::format("{}: error: {}: {}; {}", command, complaint.subject, complaint.what(),
                       complaint.advice);
}

} // namespace umbrix_cli
