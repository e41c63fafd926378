// SPDX-License-Identifier: MIT
#pragma once

#include "device/kernel_list.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <utility>

namespace coralith {

using Index = std::int64_t; ///< Counts items; the kernels' own type.

/// Memory of a backend. What the handle is, only the backend knows.
struct Memory {
    void* handle = nullptr;
    std::size_t bytes = 0;
};

/// One argument of a kernel: memory, or a number by value.
class Argument {
public:
    Argument(Memory const& memory) : memory_(memory) {}
    Argument(int value) : Argument(&value, sizeof value) {}
    Argument(float value) : Argument(&value, sizeof value) {}
    Argument(Index value) : Argument(&value, sizeof value) {}

    bool is_memory() const { return size_ == 0; }
    Memory const& memory() const { return memory_; }
    void const* bytes() const { return bytes_; }
    std::size_t size() const { return size_; } ///< Of a number, in bytes.

private:
    Argument(void const* value, std::size_t size) : size_(size) { std::memcpy(bytes_, value, size); }

    Memory memory_;
    alignas(8) unsigned char bytes_[8] = {};
    std::size_t size_ = 0;
};

using Arguments = std::initializer_list<Argument>;

/// What a device is fit for.
struct Limits {
    std::size_t largest_buffer = 0; ///< Bytes of one allocation.
    bool exact_float = false;       ///< Rounds to nearest and keeps denormals, infinities and NaN.
    bool exact_double = false;      ///< The same in double precision.
};

enum class Failure {
    kNone,
    kMemory, ///< No room; the device may serve smaller images.
    kDevice  ///< Anything else; nothing that the device holds can be relied on.
};

/// One device, behind which OpenCL, CUDA or the processor itself may stand.
///
/// Every operation returns whether it went well so far: a launch may fail late, at `finish` or `download`.
/// After a failure `failure` and `cause` say what happened. One thread at a time.
class Backend {
public:
    Backend() = default;
    Backend(Backend const&) = delete;
    Backend& operator=(Backend const&) = delete;
    virtual ~Backend() = default;

    virtual char const* kind() const = 0; ///< "OpenCL", "CUDA" or "host".
    virtual Limits limits() const = 0;

    virtual bool allocate(std::size_t bytes, Memory& memory) = 0; ///< @p bytes above 0.
    virtual void release(Memory& memory) = 0;
    virtual bool upload(Memory const& memory, void const* from, std::size_t bytes) = 0;
    virtual bool download(Memory const& memory, void* to, std::size_t bytes) = 0; ///< Waits.
    virtual bool launch(Kernel kernel, Index items, Arguments arguments) = 0;     ///< @p items above 0.
    virtual bool finish() = 0;                                                    ///< Waits.

    Failure failure() const { return failure_; }
    std::string const& cause() const { return cause_; }
    void forget_failure() { fail(Failure::kNone, {}); }

protected:
    /// Notes a failure. Returns false, for the operation to return.
    bool fail(Failure failure, std::string cause)
    {
        failure_ = failure;
        cause_ = std::move(cause);
        return false;
    }

private:
    Failure failure_ = Failure::kNone;
    std::string cause_;
};

/// Owns memory of a backend.
class DeviceArray {
public:
    explicit DeviceArray(Backend& backend) : backend_(backend) {}
    DeviceArray(DeviceArray const&) = delete;
    DeviceArray& operator=(DeviceArray const&) = delete;
    ~DeviceArray() { reset(); }

    /// Makes room for at least @p bytes; the contents are undefined afterwards.
    bool reserve(std::size_t bytes)
    {
        if (memory_.handle != nullptr && memory_.bytes >= bytes) {
            return true;
        }
        reset();
        return backend_.allocate(bytes, memory_);
    }

    /// Room for @p count elements with their values.
    template <typename T>
    bool fill(T const* from, std::size_t count)
    {
        return reserve(count * sizeof(T)) && backend_.upload(memory_, from, count * sizeof(T));
    }

    operator Argument() const { return memory_; }
    Memory const& memory() const { return memory_; }

private:
    void reset()
    {
        if (memory_.handle != nullptr) {
            backend_.release(memory_);
        }
        memory_ = {};
    }

    Backend& backend_;
    Memory memory_;
};

} // namespace coralith
