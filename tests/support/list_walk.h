// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// How many records a list file tells of, found without the code under test.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace umbrixlib::test {

/// Records that loading a list file has to make, those beyond the end of the file included.
struct ToldRecords {
    long long jobs = 0;
    long long layers = 0; ///< Of all jobs.
};

/// Goes through a list file from its first byte until it ends.
class ListWalk {
public:
    ListWalk(std::uint8_t const* bytes, std::size_t size) : next_(bytes), left_(size) {}

    /// Of a file of the right version.
    ToldRecords told()
    {
        skip(4);
        ToldRecords told;
        told.jobs = count(104);
        for (long long job = 0; job < told.jobs && !ended_; ++job) {
            skip(92);
            skip_text();
            skip_text();
            long long const layers = count(48);
            told.layers += layers;
            for (long long layer = 0; layer < layers && !ended_; ++layer) {
                skip_text();
                skip_text();
                skip(40);
            }
        }
        return told;
    }

private:
    void skip(std::size_t size)
    {
        ended_ = ended_ || size > left_;
        if (!ended_) {
            next_ += size;
            left_ -= size;
        }
    }

    /// The next four bytes, or nothing where the file ends before.
    std::optional<std::int32_t> number()
    {
        std::uint8_t const* const at = next_;
        skip(4);
        if (ended_) {
            return std::nullopt;
        }
        return static_cast<std::int32_t>(at[0] | at[1] << 8U | at[2] << 16U |
                                         static_cast<std::uint32_t>(at[3]) << 24U);
    }

    void skip_text()
    {
        std::int32_t const length = number().value_or(0);
        ended_ = ended_ || length < 0;
        skip(ended_ ? 0 : static_cast<std::size_t>(length));
    }

    /// The number as told, up to 100,000 or as many as the rest of the file has room for.
    long long count(std::size_t least_bytes)
    {
        long long const told = number().value_or(0);
        return std::clamp(told, 0LL, std::max(100'000LL, static_cast<long long>(left_ / least_bytes)));
    }

    std::uint8_t const* next_;
    std::size_t left_;
    bool ended_ = false;
};

} // namespace umbrixlib::test
