// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <libdeflate.h>
#include <memory>
#include <span>
#include <vector>

namespace umbrixlib::toolkit {

/// libdeflate at one level. Of one thread.
class MatchDeflater {
public:
    /// Throws std::bad_alloc if there is no memory for it.
    explicit MatchDeflater(int level);

    /// Bytes that @p bytes take.
    std::size_t size_of(std::span<std::uint8_t const> bytes);

    /// Appends blocks of @p bytes of which none is the last one of its stream, and that end at the end of a
    /// byte: more may follow. False, and @p to is as it was, if there is a
    /// code in libdeflate's blocks that Deflate does not have.
    bool append(std::span<std::uint8_t const> bytes, std::vector<std::uint8_t>& to);

private:
    struct Free {
        void operator()(libdeflate_compressor* compressor) const { libdeflate_free_compressor(compressor); }
    };

    /// Room for what @p bytes become.
    std::span<std::uint8_t> deflate(std::span<std::uint8_t const> bytes);

    std::unique_ptr<libdeflate_compressor, Free> compressor_;
    std::vector<std::uint8_t> packed_;
};

} // namespace umbrixlib::toolkit
