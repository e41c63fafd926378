// SPDX-License-Identifier: MIT
#pragma once

#include "device/backend.h"
#include "device/device.h"

#include <cstdlib>
#include <memory>
#include <set>
#include <string>
#include <utility>

namespace coralith::test {

/// Which operations of a device go wrong, and what it was asked for.
struct Plan {
    int fail_at = -1;        ///< Number of the first failing operation, counted from 0; none if below 0.
    bool stays_away = false; ///< All later operations fail too.
    Failure failure = Failure::kDevice;
    bool spoils_results = false; ///< Downloads give wrong numbers instead.
    Limits limits{std::size_t{1} << 30, true, true};

    int operations = 0; ///< Asked for so far, without releases.
    int opened = 0;
    std::set<Kernel> launched;
};

/// A backend of which some operations fail.
class FaultyBackend final : public Backend {
public:
    FaultyBackend(Plan& plan, std::unique_ptr<Backend> inner) : plan_(plan), inner_(std::move(inner)) {}

    char const* kind() const override { return "OpenCL"; }
    Limits limits() const override { return plan_.limits; }
    bool allocate(std::size_t bytes, Memory& memory) override
    {
        if (bytes > plan_.limits.largest_buffer) {
            return fail(Failure::kMemory, "too large");
        }
        return goes_wrong("allocate") ? false : pass(inner_->allocate(bytes, memory));
    }
    void release(Memory& memory) override { inner_->release(memory); }
    bool upload(Memory const& memory, void const* from, std::size_t bytes) override
    {
        return goes_wrong("upload") ? false : pass(inner_->upload(memory, from, bytes));
    }
    bool download(Memory const& memory, void* to, std::size_t bytes) override
    {
        if (goes_wrong("download")) {
            std::memset(to, 0xcd, bytes / 2); // what came through before the device went away
            return false;
        }
        bool const done = pass(inner_->download(memory, to, bytes));
        if (plan_.spoils_results) {
            *static_cast<unsigned char*>(to) ^= 1U;
        }
        return done;
    }
    bool launch(Kernel kernel, Index items, Arguments arguments) override
    {
        plan_.launched.insert(kernel);
        return goes_wrong("launch") ? false : pass(inner_->launch(kernel, items, arguments));
    }
    bool finish() override { return goes_wrong("finish") ? false : pass(inner_->finish()); }

private:
    bool goes_wrong(char const* operation)
    {
        int const number = plan_.operations++;
        bool const planned =
            plan_.fail_at >= 0 && (plan_.stays_away ? number >= plan_.fail_at : number == plan_.fail_at);
        if (planned) {
            fail(plan_.failure, std::string("planned: ") + operation);
        }
        return planned;
    }
    bool pass(bool done) { return done ? true : fail(inner_->failure(), inner_->cause()); }

    Plan& plan_;
    std::unique_ptr<Backend> inner_;
};

/// A device that works as @p plan says, on top of @p inner.
inline Device faulty_device(Plan& plan, Device const& inner)
{
    Device device = inner;
    device.name = "Faulty card";
    device.backend = "OpenCL";
    device.open = [&plan, open = inner.open](std::string& why) -> std::unique_ptr<Backend> {
        ++plan.opened;
        auto backend = open(why);
        return backend == nullptr ? nullptr : std::make_unique<FaultyBackend>(plan, std::move(backend));
    };
    return device;
}

} // namespace coralith::test
