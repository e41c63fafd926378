// SPDX-License-Identifier: MIT
#pragma once

#include "device/backend.h"

namespace coralith {

/// The kernels as plain C++ under OpenMP. Always there.
class HostBackend final : public Backend {
public:
    /// @param threads_allowed False in a forked child, where a team of the parent's would never answer.
    explicit HostBackend(bool threads_allowed = true) : threads_allowed_(threads_allowed) {}

    char const* kind() const override { return "host"; }
    Limits limits() const override;
    bool allocate(std::size_t bytes, Memory& memory) override;
    void release(Memory& memory) override;
    bool upload(Memory const& memory, void const* from, std::size_t bytes) override;
    bool download(Memory const& memory, void* to, std::size_t bytes) override;
    bool launch(Kernel kernel, Index items, Arguments arguments) override;
    bool finish() override { return true; }

private:
    bool threads_allowed_;
};

} // namespace coralith
