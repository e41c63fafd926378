// SPDX-License-Identifier: MIT
#pragma once

namespace umbrixlib::bench {

/// Watches how much of the machine's processors others use.
class OthersWatch {
public:
    OthersWatch();
    /// Processor time of all others since the start, as a share of what the machine has. Time that a
    /// hypervisor took counts.
    double share() const;

private:
    double busy_;
    double own_;
    double total_;
};

} // namespace umbrixlib::bench
