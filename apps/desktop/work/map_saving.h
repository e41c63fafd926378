// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/stop.h"
#include "toolkit/settings/settings.h"

#include <atomic>
#include <functional>
#include <optional>
#include <string>
#include <thread>

namespace umbrix_desktop {

namespace toolkit = umbrixlib::toolkit;

/// Saves Umbrix maps on a thread of its own, by a worker process: the bytes that the command line writes.
class MapSaving {
public:
    struct Order {
        std::string source;     ///< File.
        std::string file;       ///< To be written; its extension names the format.
        bool overwrite = false; ///< Else a file that is there already is kept, and the order fails.
        toolkit::Settings settings{};
    };
    struct Outcome {
        std::string file;
        std::string failure; ///< One sentence; "" if the file is there.
    };

    /// @param done Called once an order, on the thread of the work.
    explicit MapSaving(std::function<void(Outcome)> done);

    /// Ends the work; a file that is not whole by then is not written.
    ~MapSaving();
    MapSaving(MapSaving const&) = delete;
    MapSaving& operator=(MapSaving const&) = delete;

    /// Whether an order is at work. There can be one at a time.
    bool is_busy() const { return busy_; }

    /// Returns at once. Nothing if it is busy.
    void start(Order order);

private:
    Outcome save(Order const& order);

    std::function<void(Outcome)> done_;
    std::atomic<bool> busy_ = false;
    std::optional<toolkit::StopSource> stop_; ///< Of the thread's order.
    std::thread thread_;
};

} // namespace umbrix_desktop
