// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/png/png_packing.h"

namespace umbrixlib::toolkit {

namespace {

// libdeflate's levels: as small as libpng's default, or smaller. Low bytes of 16 bits hold few matches, which
// a thorough search does not find either.
constexpr int kLevelOf8Bits = 4;
constexpr int kLevelOf16Bits = 1;

constexpr std::uint64_t kShare = 1024; ///< A bit in `literal_bits`.

std::uint64_t bits_of_a_byte(LiteralBlock const& block, std::size_t bytes)
{
    return block.size() * kShare / bytes;
}

} // namespace

PngPlan PngPacker::plan(std::size_t first_piece, std::size_t count)
{
    PngPlan best;
    std::uint64_t least = UINT64_MAX;
    for (PngFilter const filter :
         {PngFilter::kNone, PngFilter::kSub, PngFilter::kUp, PngFilter::kAverage, PngFilter::kPaeth}) {
        rows_.filter_sample(first_piece, count, filter, filtered_);
        LiteralBlock const block(byte_counts(filtered_));
        if (block.size() < least) {
            least = block.size();
            best = {filter, false, bits_of_a_byte(block, filtered_.size())};
        }
    }
    // With matches another filter may be the best one: what repeats itself has to stay the same.
    std::uint64_t const alone = least / 8;
    std::uint64_t const worth_more_tries = best.literal_bits < 6 * kShare ? alone + alone / 7 : alone;
    PngFilter const filter_alone = best.filter;
    least = alone;
    for (PngFilter const filter : {PngFilter::kSub, PngFilter::kUp, PngFilter::kNone, filter_alone}) {
        rows_.filter_sample(first_piece, count, filter, filtered_);
        std::size_t const size = deflater().size_of(filtered_);
        if (size < least) {
            least = size;
            best.filter = filter;
            best.matches = true;
        }
        if (filter == PngFilter::kSub && size >= worth_more_tries) {
            break; // none of the others is much better
        }
    }
    return best;
}

PngPacker::Packed PngPacker::pack(std::size_t piece, PngPlan const& plan)
{
    rows_.filter(piece, plan.filter, filtered_);
    Packed packed;
    packed.adler = libdeflate_adler32(packed.adler, filtered_.data(), filtered_.size());
    packed.length = filtered_.size();
    LiteralBlock const block(byte_counts(filtered_));
    bool const is_other = bits_of_a_byte(block, filtered_.size()) < plan.literal_bits * 3 / 4;
    if (plan.matches || is_other) {
        bool const known = deflater().append(filtered_, packed.bytes);
        if (known && packed.bytes.size() <= block.size() / 8) {
            return packed;
        }
        packed.bytes.clear();
    }
    block.append(filtered_, packed.bytes);
    return packed;
}

MatchDeflater& PngPacker::deflater()
{
    return deflater_ ? *deflater_
                     : deflater_.emplace(rows_.sample_bytes() == 1 ? kLevelOf8Bits : kLevelOf16Bits);
}

} // namespace umbrixlib::toolkit
