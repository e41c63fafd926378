// SPDX-License-Identifier: MIT
#pragma once

#include "device/backend.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace coralith {

/// Where a card sits, by which one card is known under two interfaces.
struct PciAddress {
    unsigned domain = 0;
    unsigned bus = 0;
    unsigned device = 0;

    bool operator==(PciAddress const&) const = default;
};

/// A device that stages can run on. Opened at its first use.
struct Device {
    std::string name;    ///< As its driver has it.
    std::string backend; ///< "OpenCL" or "CUDA".
    bool is_graphics_card = false;
    std::optional<PciAddress> address;
    /// Opens it. Null if that fails, and why.
    std::function<std::unique_ptr<Backend>(std::string& why)> open;
};

/// The devices found, and a note for each that was passed over.
struct Discovery {
    std::vector<Device> devices;
    std::vector<std::string> notes;
};

} // namespace coralith
