// SPDX-License-Identifier: MIT
#include "session/stage_runner.h"

#include "device/shared_library.h"
#include "host/backend.h"
#include "session/self_test.h"

#include <new>
#include <utility>

namespace coralith {

StageRunner::StageRunner(Discovery found) : notes_(std::move(found.notes)), process_(process_number())
{
    for (Device& device : found.devices) {
        names_.push_back(device.name);
        entries_.push_back({std::move(device), nullptr, false, {}});
    }
    names_.emplace_back("Processor");
}

char const* StageRunner::device_name(int device) const
{
    bool const known = device >= 0 && device < device_count();
    return known ? names_[static_cast<std::size_t>(device)].c_str() : nullptr;
}

char const* StageRunner::active_backend() const
{
    auto const index = static_cast<std::size_t>(selected_);
    bool const usable = selected_ >= 0 && index < entries_.size() && !entries_[index].retired && !is_forked();
    return usable ? entries_[index].device.backend.c_str() : "host";
}

bool StageRunner::run(Stage stage, Work const& work)
{
    std::string cause;
    if (Entry* const entry = selected_entry()) {
        if (Backend* const backend = ready_backend(*entry, stage)) {
            if (run_guarded(*backend, work, cause)) {
                return true;
            }
            note_failure(*entry, stage, cause);
        }
    }
    HostBackend host(!is_forked());
    if (run_guarded(host, work, cause)) {
        return true;
    }
    reports_.report(std::string("Error: ") + name_of(stage) + " has no result: " + cause);
    return false;
}

StageRunner::Entry* StageRunner::selected_entry()
{
    if (entries_.empty()) {
        std::string line = "no device, the host runs every stage";
        for (std::string const& note : notes_) {
            line += "; " + note;
        }
        reports_.report(line);
        return nullptr;
    }
    int const host = device_count() - 1;
    if (selected_ < 0 || selected_ >= host) {
        if (selected_ > host) {
            reports_.report("there is no device " + std::to_string(selected_) +
                            ", the host runs every stage");
        }
        return nullptr;
    }
    if (is_forked()) {
        reports_.report("a forked process cannot use the devices of its parent, the host runs every stage");
        return nullptr;
    }
    return &entries_[static_cast<std::size_t>(selected_)];
}

Backend* StageRunner::ready_backend(Entry& entry, Stage stage)
{
    if (entry.retired) {
        return nullptr;
    }
    if (entry.backend == nullptr) {
        std::string why;
        entry.backend = entry.device.open(why);
        if (entry.backend == nullptr) {
            entry.retired = true;
            reports_.report(entry.device.name + " cannot be opened: " + why + "; the host stands in for it");
            return nullptr;
        }
    }
    Limits const limits = entry.backend->limits();
    if (!(needs_double(stage) ? limits.exact_double : limits.exact_float)) {
        reports_.report(entry.device.name + " does not round " +
                        (needs_double(stage) ? "doubles" : "floats") + " as the host does; the host runs " +
                        name_of(stage));
        return nullptr;
    }
    return passes_self_test(entry, stage) ? entry.backend.get() : nullptr;
}

bool StageRunner::passes_self_test(Entry& entry, Stage stage)
{
    bool& tested = entry.tested[static_cast<std::size_t>(stage)];
    if (tested) {
        return true;
    }
    HostBackend host;
    std::string cause;
    bool const passed = run_guarded(
        *entry.backend,
        [&](Backend& device) {
            SelfTest const outcome = self_test(device, host, stage);
            if (outcome == SelfTest::kDiffers) {
                cause = "its results differ from the host's";
            }
            return outcome == SelfTest::kPassed;
        },
        cause);
    tested = passed;
    if (!passed) {
        note_failure(entry, stage, cause);
    }
    return passed;
}

bool StageRunner::run_guarded(Backend& backend, Work const& work, std::string& cause)
{
    backend.forget_failure();
    try {
        if (work(backend)) {
            return true;
        }
        if (backend.failure() != Failure::kNone) {
            cause = backend.cause();
        }
    } catch (std::bad_alloc const&) {
        cause = "out of memory";
    }
    return false;
}

void StageRunner::note_failure(Entry& entry, Stage stage, std::string const& cause)
{
    // Without a failed operation it was the host that had no memory, or the result that was not the host's.
    bool const no_room = entry.backend->failure() == Failure::kMemory ||
                         (entry.backend->failure() == Failure::kNone && cause == "out of memory");
    entry.retired = !no_room;
    reports_.report(
        std::string(name_of(stage)) + " on " + entry.device.name + ": " + cause +
        (no_room ? "; the host runs it this time" : "; the host stands in for the device from now on"));
}

bool StageRunner::is_forked() const
{
    return process_number() != process_;
}

} // namespace coralith
