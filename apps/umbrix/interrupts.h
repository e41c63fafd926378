// SPDX-License-Identifier: MIT
#pragma once

namespace umbrix_cli {

/// Collects Ctrl-C, a request to end and a closed terminal instead of dying from them, so that nothing
/// temporary is left behind. Signals that the process was started without (`nohup`) stay ignored. Children
/// inherit the blocked signals and so outlive a Ctrl-C until their parent ends them. One object, for the life
/// of the program.
class Interrupts {
public:
    Interrupts();
    ~Interrupts();
    Interrupts(Interrupts const&) = delete;
    Interrupts& operator=(Interrupts const&) = delete;

    /// Becomes readable with the first interrupt; for poll.
    int descriptor() const { return descriptor_; }

    /// Throws Interrupted if an interrupt has arrived.
    void check() const;

    /// Whether an interrupt has arrived, which then counts as seen: the next call and check() wait for
    /// another. Several that came in between count as one.
    bool take() const;

private:
    int descriptor_;
};

} // namespace umbrix_cli
