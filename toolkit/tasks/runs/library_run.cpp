// SPDX-License-Identifier: MIT
#include "toolkit/tasks/runs/library_run.h"

#include "toolkit/base/failure.h"
#include "toolkit/base/stop.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <fmt/format.h>
#include <mutex>
#include <omp.h>
#include <string_view>
#include <thread>
#include <umbrixlib.h>

namespace umbrixlib::toolkit {

namespace {

constexpr auto kPollInterval = std::chrono::milliseconds(20);
constexpr std::size_t kFewTexels = 64 * 64; // as the library has them for a run without a team

/// The progress pair that the library writes with plain stores while we read. The text has room for every
/// stage name from the start, so its bytes stay where they are; they are read one by one, up to that room,
/// and never through the string, whose length changes under us. A text caught half way lasts until the next
/// look.
class ProgressPair {
public:
    ProgressPair()
    {
        status_.resize(kRoom, '\0');
        bytes_ = status_.data();
        status_.clear();
    }

    std::string* status() { return &status_; }
    int* progress() { return &progress_; }

    std::string stage() const
    {
        std::string copy;
        for (std::size_t i = 0; i < kRoom; ++i) {
            char const letter = *static_cast<char const volatile*>(bytes_ + i);
            if (letter < ' ' || letter > '~') {
                break;
            }
            copy += letter;
        }
        return copy;
    }

    int permille() { return std::atomic_ref(progress_).load(std::memory_order_relaxed); }

private:
    static constexpr std::size_t kRoom = 64;
    std::string status_;
    char const* bytes_;
    int progress_ = 0;
};

/// The library's names of its stages, in words for a user.
std::string_view stage_name(std::string_view text)
{
    constexpr std::pair<std::string_view, std::string_view> kNames[] = {
        {"Bilateral Filtering", "filtering heights"},
        {"Generating Normal", "making normals"},
        {"Generating Normal Map", "making normals"},
        {"Retreving Normal Map", "reading normals"},
        {"Normal -> Umbrix", "light"},
        {"Height -> AO", "occlusion"},
        {"Storing Results", "storing"},
        {kBlendingLayers, "blending layers"},
        {kBlendingHeights, "blending heights"},
        {kFittingRelief, "fitting"},
        {kMakingHeights, "making heights"},
    };
    for (auto const& [from, to] : kNames) {
        if (text == from) {
            return to;
        }
    }
    return text.empty() ? "starting" : text;
}

std::mutex box_mutex;
std::string box_text;

void keep_error_box(char const* text, char const*)
{
    std::lock_guard const lock(box_mutex);
    box_text = text;
}

/// The library shares texels out by the number of processors, so a smaller team would leave texels out.
void check_team_size()
{
    int team = 0;
#pragma omp parallel
#pragma omp single
    team = omp_get_num_threads();
    if (team != omp_get_num_procs()) {
        throw Failure(Fault::kTooFewThreads, "OpenMP",
                      fmt::format("it gives {} threads for {} processors", team, omp_get_num_procs()));
    }
}

/// Makes @p call on a thread of its own and @p look now and then while it runs.
void run_beside(std::function<void()> const& call, std::function<void()> const& look)
{
    std::mutex mutex;
    std::condition_variable finished;
    bool done = false;
    std::exception_ptr error;
    std::thread worker([&] {
        try {
            check_team_size();
            call();
        } catch (...) {
            error = std::current_exception();
        }
        std::lock_guard const lock(mutex);
        done = true;
        finished.notify_one();
    });
    {
        std::unique_lock lock(mutex);
        while (!finished.wait_for(lock, kPollInterval, [&] { return done; })) {
            look();
        }
    }
    worker.join();
    if (error) {
        std::rethrow_exception(error);
    }
}

void check_work(bool good, std::string const& file)
{
    if (!good || !box_text.empty()) {
        throw Failure(Fault::kNotWorkedOn, file,
                      box_text.empty() ? "the library could not work on it" : box_text);
    }
}

} // namespace

void run_library(std::string const& file, Observer& observer, LibraryCall const& call, bool* cancel)
{
    static std::mutex turns; // the functions called so know one state a process
    std::lock_guard const turn(turns);
    set_message_handler(keep_error_box);
    ProgressPair pair;
    bool good = false;
    run_beside([&] { good = call(pair.status(), pair.progress()); },
               [&] {
                   observer.stage(stage_name(pair.stage()), pair.permille());
                   if (cancel != nullptr && observer.stopping()) {
                       std::atomic_ref(*cancel).store(true, std::memory_order_relaxed);
                   }
               });
    check_work(good, file);
}

void run_in_memory(std::string const& file, Observer& observer,
                   std::function<Outcome(RunControl& control)> const& call, std::size_t texels)
{
    set_message_handler(keep_error_box);
    RunControl control;
    Outcome outcome = Outcome::kInvalid;
    if (observer.stopping()) {
        control.stop();
    }
    if (texels <= kFewTexels) {
        outcome = call(control);
    } else {
        run_beside([&] { outcome = call(control); },
                   [&] {
                       observer.stage(stage_name(control.stage()), control.permille());
                       if (observer.stopping()) {
                           control.stop();
                       }
                   });
    }
    if (outcome == Outcome::kStopped) {
        throw Stopped();
    }
    check_work(outcome == Outcome::kDone, file);
}

} // namespace umbrixlib::toolkit
