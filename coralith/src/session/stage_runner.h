// SPDX-License-Identifier: MIT
#pragma once

#include "device/device.h"
#include "session/reports.h"
#include "stages/stage.h"

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace coralith {

/// Brings every stage to a result: on the selected device, or on the host where that one does not serve.
///
/// A device that fails is retired for good; one that has no room is only passed over this time. In a forked
/// child no device of the parent is touched. One thread at a time, but for the names and the last report.
class StageRunner {
public:
    explicit StageRunner(Discovery found);

    int device_count() const { return static_cast<int>(names_.size()); } ///< With the host, the last.
    char const* device_name(int device) const;                           ///< Null if there is none.
    void select(int device) { selected_ = device; }
    int selected() const { return selected_; }
    /// What the next stage would run on: "OpenCL", "CUDA" or "host".
    char const* active_backend() const;

    /// Writes the whole result or fails, and then has changed nothing that a second run needs.
    using Work = std::function<bool(Backend& backend)>;
    /// False if not even the host has a result.
    bool run(Stage stage, Work const& work);

    Reports& reports() { return reports_; }

private:
    struct Entry {
        Device device;
        std::unique_ptr<Backend> backend;
        bool retired = false;
        std::array<bool, kStages> tested{};
    };

    Entry* selected_entry();
    Backend* ready_backend(Entry& entry, Stage stage);
    bool passes_self_test(Entry& entry, Stage stage);
    bool run_guarded(Backend& backend, Work const& work, std::string& cause);
    void note_failure(Entry& entry, Stage stage, std::string const& cause);
    bool is_forked() const;

    std::vector<Entry> entries_;
    std::vector<std::string> names_;
    std::vector<std::string> notes_;
    Reports reports_;
    int selected_ = 0;
    long process_;
};

} // namespace coralith
