// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <omp.h>
#include <system_error>
#include <thread>
#include <vector>

namespace umbrixlib::toolkit {

/// Shares the numbers from 0 to @p count - 1 out to as many threads as OpenMP would use. Each calls @p body
/// once, with a function that gives the next number, and @p count when there is none left. What a body throws
/// is thrown when all have ended. Where the system gives fewer threads, these do all of it: OpenMP would end
/// the program.
template <typename Body>
void on_all_threads(std::size_t count, Body const& body)
{
    std::atomic<std::size_t> next = 0;
    std::mutex mutex;
    std::exception_ptr error;
    auto const work = [&] {
        try {
            body([&] { return std::min(next++, count); });
        } catch (...) {
            std::lock_guard const lock(mutex);
            error = std::current_exception();
            next = count;
        }
    };
    std::vector<std::jthread> others;
    std::size_t const threads = std::min(count, static_cast<std::size_t>(omp_get_max_threads()));
    try {
        while (others.size() + 1 < threads) {
            others.emplace_back(work);
        }
    } catch (std::system_error const&) {
    }
    work();
    others.clear(); // waits for them
    if (error) {
        std::rethrow_exception(error);
    }
}

/// Calls @p body with each number from 0 to @p count - 1, on as many threads.
template <typename Body>
void for_each_number(std::size_t count, Body const& body)
{
    on_all_threads(count, [&](auto const& next) {
        for (std::size_t i = next(); i < count; i = next()) {
            body(i);
        }
    });
}

/// Calls @p body with the first number of each piece of 0 to @p count - 1, and with the one behind its last.
/// A few numbers are one piece, for this thread.
/// @param weight Texels that a number stands for.
template <typename Body>
void for_pieces(std::size_t count, Body const& body, std::size_t weight = 1)
{
    constexpr std::size_t kTexels = 1U << 16U;
    std::size_t const piece = std::max<std::size_t>(kTexels / weight, 1);
    for_each_number((count + piece - 1) / piece,
                    [&](std::size_t i) { body(i * piece, std::min((i + 1) * piece, count)); });
}

} // namespace umbrixlib::toolkit
