// SPDX-License-Identifier: MIT
#include "toolkit/base/failure.h"
#include "toolkit/settings/defaults.h"
#include "toolkit/tasks/prepared_input.h"
#include "toolkit/tasks/runs/graphics_run.h"
#include "toolkit/tasks/runs/library_run.h"
#include "toolkit/tasks/tasks.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <fnmatch.h>
#include <umbrixlib.h>
#include <vector>

namespace umbrixlib::toolkit {

namespace {

namespace fs = std::filesystem;

/// Whether the walk takes a file of that name: only * and ? are wildcards for it.
bool walk_takes(std::string const& pattern, std::string const& name)
{
    std::string escaped;
    for (char const letter : pattern) {
        escaped += letter == '[' ? std::string("[[]") : std::string(1, letter);
    }
    return pattern == "*.*" || fnmatch(escaped.c_str(), name.c_str(), FNM_CASEFOLD | FNM_NOESCAPE) == 0;
}

/// Adds what the walk takes from @p folder. What cannot be looked at is nothing for the walk either.
/// @param above The folders on the way to it, which a link may lead back to.
void find_files(FolderJob const& job, fs::path const& folder, std::vector<fs::path> above,
                std::vector<fs::path>& files)
{
    std::error_code error;
    fs::path const place = fs::canonical(folder, error);
    if (error || std::ranges::find(above, place) != above.end()) {
        return;
    }
    above.push_back(place);
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        std::error_code ignored;
        if (entry->is_directory(ignored)) {
            if (job.recurse) {
                find_files(job, entry->path(), above, files);
            }
        } else if (entry->is_regular_file(ignored) &&
                   walk_takes(job.search, entry->path().filename().string())) {
            files.push_back(entry->path());
        }
    }
}

/// The library takes every picture for one of 3 or 4 bytes a texel. Of one byte it makes a map of one value,
/// of two or six it reads beside the texels.
void refuse_unless_plain(fs::path const& file, Observer& observer)
{
    constexpr double kMostTexels = 268435456;
    try {
        DecodedImage const image = decode_input({file.string(), file.string(), kMostTexels}, observer);
        if (!image.is_plain()) {
            std::string const what = image.description();
            throw Failure(Fault::kNotForFolderWalk, file.string(),
                          fmt::format("it is {}, and the library's own walk makes maps of 8-bit colour only",
                                      what == "palette" ? "a picture with a palette" : what));
        }
    } catch (Failure const& failure) {
        if (failure.fault == Fault::kNotForFolderWalk) {
            throw;
        } // what cannot be read is left to the walk
    }
}

} // namespace

FolderReport run(FolderJob const& job, Observer& observer)
{
    if (job.graphics.device) {
        open_device(job.graphics, job.folder, observer);
    }
    std::vector<fs::path> files;
    find_files(job, job.folder, {}, files);
    std::ranges::sort(files);
    for (fs::path const& file : files) {
        if (observer.stopping()) {
            return {};
        }
        refuse_unless_plain(file, observer);
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
