// SPDX-License-Identifier: MIT
#pragma once

#include "interrupts/interrupts.h"

#include <cstdio>
#include <sys/types.h>

namespace umbrix_cli {

/// As long as it lives, what is written to stdout and stderr waits for whoever reads them, but not longer
/// than until an interrupt: the signals are blocked, and a write that waits would never see them. From then
/// on nobody is waited for, and what is not read is dropped. One object, for the life of a command.
class InterruptibleOutput {
public:
    explicit InterruptibleOutput(Interrupts const& interrupts);
    ~InterruptibleOutput();
    InterruptibleOutput(InterruptibleOutput const&) = delete;
    InterruptibleOutput& operator=(InterruptibleOutput const&) = delete;

    /// Whether anything of the standard output was dropped.
    bool dropped() const { return out_.dropped; }

private:
    struct Stream {
        Interrupts const* interrupts;
        int descriptor;
        std::FILE* ordinary;
        bool dropped = false;
    };

    static ssize_t write(void* stream, char const* bytes, std::size_t size);
    static std::FILE* open(Stream& stream);

    Stream out_;
    Stream err_;
};

} // namespace umbrix_cli
