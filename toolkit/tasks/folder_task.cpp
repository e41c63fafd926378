// SPDX-License-Identifier: MIT
#include "toolkit/base/worker_channel.h"
#include "toolkit/settings/settings.h"
#include "toolkit/tasks/graphics_run.h"
#include "toolkit/tasks/job.h"
#include "toolkit/tasks/library_run.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <stop_token>
#include <thread>
#include <umbrixlib.h>

namespace umbrixlib::toolkit {

namespace {

constexpr auto kInterval = std::chrono::milliseconds(20);

/// Sets the library's stop flag as soon as the tool asks for it.
void watch_for_stop(std::stop_token const& ended, std::filesystem::path const& request, bool& cancel)
{
    std::error_code error;
    while (!ended.stop_requested()) {
        if (std::filesystem::exists(request, error)) {
            std::atomic_ref(cancel).store(true, std::memory_order_relaxed);
        }
        std::this_thread::sleep_for(kInterval);
    }
}

} // namespace

nlohmann::json run_folder_task(Job const& job)
{
    if (job.graphics.device) {
        open_device(job.graphics);
    }
    send_phase(Phase::kMaking);
    bool cancel = false;
    umbrix_options options = options_for(job.settings, job.kind.value(), 0);
    options.recurse = job.recurse;
    options.cancel = &cancel;
    std::jthread const watcher([&](std::stop_token const& ended) {
        watch_for_stop(ended, std::filesystem::path(job.scratch) / kStopRequest, cancel);
    });
    bool ran_through = false;
    run_library([&](std::string* status, int* progress) {
        LinkedList<n_layer> layers;
        std::string current;
        ran_through = job.graphics.device
                          ? UmbrixFolder_GPU(gpu_options(*job.graphics.device), job.input, job.search,
                                             options, &layers, nullptr, &current, status, progress)
                          : UmbrixFolder(job.input, job.search, options, &layers, &current, status, progress);
        return true;
    });
    return {{"ran_through", ran_through}};
}

} // namespace umbrixlib::toolkit
