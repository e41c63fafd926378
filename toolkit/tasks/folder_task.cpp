// SPDX-License-Identifier: MIT
#include "toolkit/settings/settings.h"
#include "toolkit/tasks/runs/graphics_run.h"
#include "toolkit/tasks/runs/library_run.h"
#include "toolkit/tasks/tasks.h"

#include <umbrixlib.h>

namespace umbrixlib::toolkit {

FolderReport run(FolderJob const& job, Observer& observer)
{
    if (job.graphics.device) {
        open_device(job.graphics, job.folder, observer);
    }
    observer.begin(Phase::kMaking, job.folder);
    bool cancel = false;
    umbrix_options options = options_for(job.settings, job.kind, 0);
    options.recurse = job.recurse;
    options.cancel = &cancel;
    FolderReport report;
    auto const walk = [&](std::string* status, int* progress) {
        LinkedList<n_layer> layers;
        std::string current;
        report.ran_through =
            job.graphics.device
                ? UmbrixFolder_GPU(gpu_options(*job.graphics.device), job.folder, job.search, options,
                                   &layers, nullptr, &current, status, progress)
                : UmbrixFolder(job.folder, job.search, options, &layers, &current, status, progress);
        return true;
    };
    run_library(job.folder, observer, walk, &cancel);
    return report;
}

} // namespace umbrixlib::toolkit
