// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <libdeflate.h>
#include <memory>
#include <span>

namespace umbrixlib::toolkit {

/// Unpacks Deflate streams by libdeflate. Of one thread.
class Inflater {
public:
    /// Throws std::bad_alloc if there is no memory for it.
    Inflater();

    /// Fills @p to with what @p stream holds. False if that is less or more, or if the stream does not end
    /// with the last byte given.
    bool inflate(std::span<std::uint8_t const> stream, std::span<std::uint8_t> to);

private:
    struct Free {
        void operator()(libdeflate_decompressor* inflater) const { libdeflate_free_decompressor(inflater); }
    };

    std::unique_ptr<libdeflate_decompressor, Free> inflater_;
};

} // namespace umbrixlib::toolkit
