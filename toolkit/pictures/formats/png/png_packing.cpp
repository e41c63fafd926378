// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/png/png_packing.h"

#include <algorithm>

namespace umbrixlib::toolkit {

namespace {

// Levels of libdeflate.
constexpr int kFastest = 1;
constexpr int kSlower[] = {2, 4};
constexpr int kLikeZlib = 6; ///< Packs about as well as zlib at its default level.
constexpr int kSmallest = 9;

/// Of so few bytes each try takes longer than the best way saves.
constexpr std::size_t kFewBytes = std::size_t{16} * 1024;

/// Matches take several times as long as bytes by themselves, and have to save more than this part.
constexpr std::size_t kWorthMatches = 12;
constexpr std::size_t kWorthMatchesIfFast = 3;

/// So do filters chosen in each row, with the level that goes with them.
constexpr std::size_t kWorthFiltersByRow = 50;

constexpr std::uint64_t kShare = 1024; ///< A bit in `literal_bits`.

std::uint64_t bits_of_a_byte(LiteralBlock const& block, std::size_t bytes)
{
    return block.size() * kShare / bytes;
}

} // namespace

PngPlan PngPacker::plan(std::size_t first_piece, std::size_t count)
{
    PngPlan const alone = plan_alone(first_piece, count);
    return compression_ == Compression::kSmall ? plan_small(first_piece, count, alone)
                                               : plan_usual(first_piece, count, alone);
}

/// The best one without matches.
PngPlan PngPacker::plan_alone(std::size_t first_piece, std::size_t count)
{
    PngPlan best;
    std::uint64_t least = UINT64_MAX;
    for (PngFilter const filter : kPngFilters) {
        rows_.filter_sample(first_piece, count, filter, filtered_);
        LiteralBlock const block(byte_counts(filtered_));
        if (block.size() < least) {
            least = block.size();
            best = {filter, 0, bits_of_a_byte(block, filtered_.size())};
        }
    }
    return best;
}

PngPlan PngPacker::plan_usual(std::size_t first_piece, std::size_t count, PngPlan const& alone)
{
    bool const fast = compression_ == Compression::kFast;
    PngPlan const like_libpng{std::nullopt, kLikeZlib, alone.literal_bits};
    std::size_t const wanted = fast ? SIZE_MAX : size_of_sample(first_piece, count, like_libpng);
    std::size_t const worth_matches = fast ? kWorthMatchesIfFast : kWorthMatches;
    std::size_t const size_alone = size_of_sample(first_piece, count, alone);
    if (filtered_.size() <= kFewBytes) {
        return size_alone <= wanted ? alone : like_libpng;
    }
    // With matches another filter may be the best one: what repeats itself has to stay the same.
    PngPlan best = alone;
    std::size_t least = size_alone;
    std::vector<std::optional<PngFilter>> filters{PngFilter::kNone, PngFilter::kSub, PngFilter::kUp};
    if (std::find(filters.begin(), filters.end(), alone.filter) == filters.end()) {
        filters.push_back(alone.filter);
    }
    for (auto const filter : filters) {
        PngPlan const plan{filter, kFastest, alone.literal_bits};
        std::size_t const size = size_of_sample(first_piece, count, plan);
        if (size < least) {
            least = size;
            best = plan;
        }
        if (filter == PngFilter::kSub && size_alone <= wanted &&
            size_alone <= least + least / worth_matches) {
            return alone;
        }
    }
    for (int const level : kSlower) {
        if (least > wanted) {
            best.level = level;
            least = size_of_sample(first_piece, count, best);
        }
    }
    return fast || least <= wanted + wanted / kWorthFiltersByRow ? best : like_libpng;
}

PngPlan PngPacker::plan_small(std::size_t first_piece, std::size_t count, PngPlan const& alone)
{
    PngPlan best = alone;
    std::size_t least = size_of_sample(first_piece, count, alone);
    for (std::size_t i = 0; i <= std::size(kPngFilters); ++i) {
        PngPlan plan{std::nullopt, kSmallest, alone.literal_bits};
        if (i < std::size(kPngFilters)) {
            plan.filter = kPngFilters[i];
        }
        std::size_t const size = size_of_sample(first_piece, count, plan);
        if (size < least) {
            least = size;
            best = plan;
        }
    }
    return best;
}

std::size_t PngPacker::size_of_sample(std::size_t first_piece, std::size_t count, PngPlan const& plan)
{
    rows_.filter_sample(first_piece, count, plan.filter, filtered_);
    return plan.level > 0 ? deflater(plan.level).size_of(filtered_)
                          : LiteralBlock(byte_counts(filtered_)).size() / 8;
}

PngPacker::Packed PngPacker::pack(std::size_t piece, PngPlan const& plan)
{
    rows_.filter(piece, plan.filter, filtered_);
    Packed packed;
    packed.adler = libdeflate_adler32(packed.adler, filtered_.data(), filtered_.size());
    packed.length = filtered_.size();
    if (plan.level > 0 && deflater(plan.level).append(filtered_, packed.bytes) &&
        packed.bytes.size() <= filtered_.size() / 8) { // bytes by themselves take a bit or more
        return packed;
    }
    LiteralBlock const block(byte_counts(filtered_));
    bool const is_other = bits_of_a_byte(block, filtered_.size()) < plan.literal_bits * 3 / 4;
    if (plan.level == 0 && is_other) {
        deflater(kFastest).append(filtered_, packed.bytes);
    }
    if (packed.bytes.empty() || packed.bytes.size() > block.size() / 8) {
        packed.bytes.clear();
        block.append(filtered_, packed.bytes);
    }
    return packed;
}

MatchDeflater& PngPacker::deflater(int level)
{
    return deflaters_.try_emplace(level, level).first->second;
}

} // namespace umbrixlib::toolkit
