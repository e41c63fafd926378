// SPDX-License-Identifier: MIT
#include "toolkit/tasks/jobs.h"

#include "toolkit/base/overloaded.h"

namespace umbrixlib::toolkit {

std::string name_of_input(Job const& job)
{
    return std::visit(Overloaded{
                          [](auto const& each) { return each.files.input; },
                          [](InfoJob const& info) { return info.input; },
                          [](StackJob const& stack) { return stack.file; },
                          [](FitJob const& fit) { return fit.heights; },
                          [](DevicesJob const&) { return std::string("graphics library"); },
                          [](FolderJob const& folder) { return folder.folder; },
                      },
                      job);
}

} // namespace umbrixlib::toolkit
