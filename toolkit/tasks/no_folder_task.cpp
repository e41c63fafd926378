// SPDX-License-Identifier: MIT
#include "toolkit/base/failure.h"
#include "toolkit/tasks/tasks.h"

namespace umbrixlib::toolkit {

/// For a build without DevIL, which the walk reads and writes its pictures with.
FolderReport run(FolderJob const& job, Observer& /*observer*/)
{
    throw Failure(Fault::kNoFolderWalk, job.folder,
                  "this build has no DevIL, which the library's own walk needs");
}

} // namespace umbrixlib::toolkit
