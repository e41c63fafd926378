// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/observer.h"
#include "toolkit/pictures/decoded_image.h"
#include "toolkit/pictures/encode.h"
#include "toolkit/pictures/output_format.h"
#include "work/map_work.h"

#include <cmath>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

/// @file
/// Pictures to work on, and somebody who listens to the work.

namespace umbrix_desktop::test {

namespace toolkit = umbrixlib::toolkit;

/// Hills and noise in 16 bits, or in all four channels of bytes.
inline toolkit::Picture hills(int width, int height, int channels = 1,
                              umbrixlib::SampleType type = umbrixlib::SampleType::kUint16)
{
    toolkit::Picture picture = toolkit::make_picture(width, height, channels, type);
    std::uint32_t state = 1;
    std::size_t at = 0;
    auto const step = static_cast<std::size_t>(channels);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x, at += step) {
            double const hill = 0.5 + 0.3 * std::sin(0.05 * x + 0.3) * std::cos(0.07 * y) +
                                0.1 * std::sin(0.4 * x * y / width);
            for (std::size_t c = 0; c < step; ++c) {
                state = state * 1664525U + 1013904223U;
                double const value = hill + 0.1 * (state >> 8U) / (1U << 24U);
                if (type == umbrixlib::SampleType::kUint16) {
                    picture.samples<std::uint16_t>()[at + c] = static_cast<std::uint16_t>(65535 * value);
                } else {
                    picture.bytes[at + c] = static_cast<std::uint8_t>(255 * value);
                }
            }
        }
    }
    return picture;
}

inline void save(toolkit::Picture const& picture, std::filesystem::path const& file)
{
    toolkit::Observer nobody;
    write_picture(file, *toolkit::output_format(file), file.string(), picture, toolkit::Compression::kFast,
                  nobody);
}

inline toolkit::Picture load(std::filesystem::path const& file)
{
    return toolkit::DecodedImage(file, file.string(), 1e9).release_picture();
}

/// Keeps all that a MapWork tells.
class Listener {
public:
    using Told = std::shared_ptr<Made const>;

    /// @param also Called with each, on the thread of the work.
    explicit Listener(std::function<void(Made const&)> also = {})
        : also_(std::move(also)), work_([this](Told told) { take(std::move(told)); },
                                        [this](std::uint64_t wish, int permille) {
                                            std::scoped_lock const lock(mutex_);
                                            progress_.emplace_back(wish, permille);
                                        })
    {
    }

    MapWork& work() { return work_; }

    /// What was told last of the wish of that number, which is the newest.
    Made wait_for(std::uint64_t wish)
    {
        std::unique_lock lock(mutex_);
        changed_.wait(lock,
                      [&] { return !told_.empty() && told_.back()->wish == wish && told_.back()->whole; });
        return *told_.back();
    }

    Made make(Wish const& wish) { return wait_for(work_.want(wish)); }

    std::vector<Told> told()
    {
        std::scoped_lock const lock(mutex_);
        return told_;
    }

    std::vector<std::pair<std::uint64_t, int>> progress()
    {
        std::scoped_lock const lock(mutex_);
        return progress_;
    }

private:
    void take(Told told)
    {
        if (also_) {
            also_(*told);
        }
        std::scoped_lock const lock(mutex_);
        told_.push_back(std::move(told));
        changed_.notify_all();
    }

    std::function<void(Made const&)> also_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Told> told_;
    std::vector<std::pair<std::uint64_t, int>> progress_;
    MapWork work_; ///< The last one: its thread uses all the others.
};

inline Wish wish_for(std::filesystem::path const& source, std::vector<Show> const& shows)
{
    Wish wish;
    wish.source = source.string();
    wish.settings.rays = 16;
    for (Show const show : shows) {
        wish.shows[static_cast<std::size_t>(show)] = true;
    }
    return wish;
}

inline toolkit::Picture const* picture_of(Made const& made, Show show)
{
    return made.pictures[static_cast<std::size_t>(show)].get();
}

} // namespace umbrix_desktop::test
