// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/compression.h"
#include "toolkit/pictures/formats/deflate/literal_block.h"
#include "toolkit/pictures/formats/deflate/match_deflater.h"
#include "toolkit/pictures/formats/png/png_rows.h"

#include <map>
#include <optional>

namespace umbrixlib::toolkit {

/// How the pieces of a part of a picture are packed.
struct PngPlan {
    std::optional<PngFilter> filter{}; ///< Empty: as libpng chooses in each row.
    int level = 0; ///< libdeflate's; 0 if it finds no more than the bytes by themselves tell.
    std::uint64_t literal_bits = 0; ///< What a byte takes by itself, times 1024.
};

/// Packs pieces of a picture's rows. Of one thread.
class PngPacker {
public:
    PngPacker(PngRows const& rows, Compression compression) : rows_(rows), compression_(compression) {}

    /// Tries on a sample of @p count pieces what is best for them: by default the fastest way to pack them
    /// that makes them no larger than libpng does, with the filter that makes them smallest then.
    PngPlan plan(std::size_t first_piece, std::size_t count);

    /// A piece of a Deflate stream, with the check sum and the length of what it holds.
    struct Packed {
        std::vector<std::uint8_t> bytes;
        std::uint32_t adler = 1;
        std::size_t length = 0;
    };

    Packed pack(std::size_t piece, PngPlan const& plan);

private:
    PngPlan plan_alone(std::size_t first_piece, std::size_t count);
    PngPlan plan_usual(std::size_t first_piece, std::size_t count, PngPlan const& alone);
    PngPlan plan_small(std::size_t first_piece, std::size_t count, PngPlan const& alone);
    std::size_t size_of_sample(std::size_t first_piece, std::size_t count, PngPlan const& plan);
    MatchDeflater& deflater(int level);

    PngRows const& rows_;
    Compression compression_;
    std::vector<std::uint8_t> filtered_;
    std::map<int, MatchDeflater> deflaters_; ///< By their levels, made when they are first needed.
};

} // namespace umbrixlib::toolkit
