// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/png/png_rows.h"

#include <algorithm>
#include <bit>

namespace umbrixlib::toolkit {

namespace {

/// Bytes of a piece. A piece knows nothing of what stands before it, which costs a larger share of smaller
/// ones.
constexpr std::size_t kPiece = std::size_t{256} * 1024;

// Bytes of a sample, if rows are not long.
constexpr std::size_t kShareOfSample = 32;
constexpr std::size_t kLeastSample = std::size_t{32} * 1024;
constexpr std::size_t kMostSample = std::size_t{256} * 1024;

constexpr std::size_t kRowsOfStripe = 8; ///< At least: rows may be like those above them.
constexpr std::size_t kMostStripes = 8;

/// Of bytes taken for numbers with a sign.
std::uint64_t sum_of_magnitudes(std::span<std::uint8_t const> bytes)
{
    constexpr std::size_t kBlock = 65536;
    std::uint64_t sum = 0;
    for (; !bytes.empty(); bytes = bytes.subspan(std::min(bytes.size(), kBlock))) {
        std::uint32_t of_block = 0; // as many lanes of a vector as can be
        for (std::uint8_t const byte : bytes.first(std::min(bytes.size(), kBlock))) {
            of_block += static_cast<std::uint8_t>(byte < 128U ? byte : 256U - byte);
        }
        sum += of_block;
    }
    return sum;
}

/// @param tried Room.
PngFilter filter_of_least_sum(std::span<std::uint8_t const> row, std::uint8_t const* above, std::size_t step,
                              std::vector<std::uint8_t>& tried)
{
    PngFilter best = PngFilter::kNone;
    std::uint64_t least = UINT64_MAX;
    tried.resize(row.size());
    for (PngFilter const filter : kPngFilters) {
        filter_row(filter, row, above, step, tried.data());
        std::uint64_t const sum = sum_of_magnitudes(tried);
        if (sum < least) {
            least = sum;
            best = filter;
        }
    }
    return best;
}

} // namespace

PngRows::PngRows(Picture const& picture)
    : picture_(picture), rows_(static_cast<std::size_t>(picture.height)),
      row_bytes_(picture.bytes.size() / rows_),
      rows_of_piece_(std::max<std::size_t>(kPiece / (row_bytes_ + 1), 1))
{
}

std::size_t PngRows::filtered_size(std::size_t piece) const
{
    return std::min(rows_of_piece_, rows_ - piece * rows_of_piece_) * (row_bytes_ + 1);
}

void PngRows::filter(std::size_t piece, std::optional<PngFilter> filter, std::vector<std::uint8_t>& to) const
{
    std::size_t const first = piece * rows_of_piece_;
    to.clear();
    append(
        first, std::min(first + rows_of_piece_, rows_), [=](std::size_t) { return filter; }, to);
}

bool PngRows::filter_like(std::size_t piece, std::span<std::uint8_t const> filtered,
                          std::vector<std::uint8_t>& to) const
{
    std::size_t const first = piece * rows_of_piece_;
    std::size_t const last = std::min(first + rows_of_piece_, rows_);
    auto const number = [&](std::size_t y) { return filtered[(y - first) * (row_bytes_ + 1)]; };
    for (std::size_t y = first; y < last; ++y) {
        if (number(y) >= std::size(kPngFilters)) {
            return false;
        }
    }
    to.clear();
    append(
        first, last, [&](std::size_t y) { return std::optional(kPngFilters[number(y)]); }, to);
    return true;
}

void PngRows::filter_sample(std::size_t first_piece, std::size_t count, std::optional<PngFilter> filter,
                            std::vector<std::uint8_t>& to) const
{
    std::size_t const begin = first_piece * rows_of_piece_;
    std::size_t const rows = std::min(count * rows_of_piece_, rows_ - begin);
    std::size_t const bytes = std::clamp(rows * (row_bytes_ + 1) / kShareOfSample, kLeastSample, kMostSample);
    std::size_t const sample = std::clamp<std::size_t>(bytes / (row_bytes_ + 1), 1, rows);
    std::size_t const stripes = std::clamp<std::size_t>(sample / kRowsOfStripe, 1, kMostStripes);
    to.clear();
    for (std::size_t i = 0; i < stripes; ++i) {
        std::size_t const first = begin + rows * i / stripes;
        append(
            first, first + sample / stripes, [=](std::size_t) { return filter; }, to);
    }
}

template <typename FilterOfRow>
void PngRows::append(std::size_t first, std::size_t last, FilterOfRow filter,
                     std::vector<std::uint8_t>& to) const
{
    std::size_t const step = static_cast<std::size_t>(picture_.channels) * sample_size(picture_.type);
    std::vector<std::uint8_t> rooms[2];
    std::vector<std::uint8_t> tried;
    std::vector<std::uint8_t> const zeros(first == 0 ? row_bytes_ : 0);
    std::uint8_t const* above = first == 0 ? zeros.data() : row(first - 1, rooms[(first + 1) % 2]);
    std::size_t at = to.size();
    to.resize(at + (last - first) * (row_bytes_ + 1));
    for (std::size_t y = first; y < last; ++y) {
        std::span<std::uint8_t const> const bytes(row(y, rooms[y % 2]), row_bytes_);
        std::optional<PngFilter> const wanted = filter(y);
        PngFilter const chosen = wanted ? *wanted : filter_of_least_sum(bytes, above, step, tried);
        to[at] = static_cast<std::uint8_t>(chosen);
        filter_row(chosen, bytes, above, step, &to[at + 1]);
        at += row_bytes_ + 1;
        above = bytes.data();
    }
}

std::uint8_t const* PngRows::row(std::size_t y, std::vector<std::uint8_t>& room) const
{
    std::uint8_t const* const bytes = &picture_.bytes[(rows_ - 1 - y) * row_bytes_];
    if (picture_.type == SampleType::kUint8 || std::endian::native == std::endian::big) {
        return bytes;
    }
    room.resize(row_bytes_);
    std::uint8_t* const to = room.data();
    for (std::size_t i = 0; i + 2 <= row_bytes_; i += 2) {
        to[i] = bytes[i + 1];
        to[i + 1] = bytes[i];
    }
    return to;
}

} // namespace umbrixlib::toolkit
