// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <memory>
#include <utility>

namespace umbrixlib::detail {

/// An array that knows its capacity.
template <typename T>
struct Buffer {
    std::unique_ptr<T[]> data;
    std::size_t capacity = 0;

    /// Makes room for at least @p count elements. If the array has to grow, it is replaced, and its contents
    /// are undefined.
    void reserve(std::size_t count)
    {
        if (data == nullptr || capacity < count) {
            data.reset();
            data = std::make_unique_for_overwrite<T[]>(count);
            capacity = count;
        }
    }
};

/// Keeps one buffer that outlives the run which made it, for the next run to take. By contract a run never
/// releases such a buffer; handing it on keeps memory bounded over any number of files. Overlapping runs do
/// not share: the second one starts with an empty buffer.
template <typename T>
class RetainedBuffer {
public:
    RetainedBuffer() = default;
    RetainedBuffer(RetainedBuffer const&) = delete;
    RetainedBuffer& operator=(RetainedBuffer const&) = delete;
    ~RetainedBuffer() { delete kept_.exchange(nullptr); }

    /// A buffer of at least @p count elements, all of them value-initialised.
    Buffer<T> take(std::size_t count)
    {
        Buffer<T> buffer = take_to_overwrite(count);
        std::fill_n(buffer.data.get(), count, T{});
        return buffer;
    }

    /// A buffer of at least @p count elements that hold anything, what a run has left in them too.
    Buffer<T> take_to_overwrite(std::size_t count)
    {
        std::unique_ptr<Buffer<T>> const kept(kept_.exchange(nullptr));
        Buffer<T> buffer = kept == nullptr ? Buffer<T>{} : std::move(*kept);
        buffer.reserve(count);
        return buffer;
    }

    void keep(Buffer<T> buffer) { delete kept_.exchange(new Buffer<T>(std::move(buffer))); }

private:
    std::atomic<Buffer<T>*> kept_ = nullptr;
};

} // namespace umbrixlib::detail
