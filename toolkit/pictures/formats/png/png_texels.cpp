// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/png/png_texels.h"

#include "toolkit/base/all_threads.h"
#include "toolkit/pictures/formats/deflate/inflater.h"
#include "toolkit/pictures/formats/png/png_unfilter.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <optional>
#include <png.h>
#include <string_view>

namespace umbrixlib::toolkit {

namespace {

/// The contents of all IDAT chunks. Nothing if one is damaged, or if they are longer than @p most.
std::optional<std::vector<std::uint8_t>> packed_rows(SourceFile& source, std::size_t length, std::size_t most)
{
    constexpr std::string_view kName = "IDAT";
    auto const crc_of_name = libdeflate_crc32(0, kName.data(), kName.size());
    std::vector<std::uint8_t> packed;
    for (bool more = true; more;) {
        std::size_t const at = packed.size();
        if (length > most - at) {
            return {};
        }
        packed.resize(at + length);
        std::uint8_t* const content = packed.data() + at;
        png_byte behind[12]; // its CRC, the length and the name of the next one
        if (source.read_some(content, length) != length ||
            source.read_some(behind, sizeof behind) != sizeof behind ||
            libdeflate_crc32(crc_of_name, content, length) != png_get_uint_32(behind)) {
            return {};
        }
        length = png_get_uint_32(behind + 4);
        more = std::memcmp(behind + 8, kName.data(), kName.size()) == 0;
    }
    return packed;
}

/// Fills @p to with what @p stream, of zlib's format, holds. False if that is less or more, or damaged.
bool unpack(std::span<std::uint8_t const> stream, std::span<std::uint8_t> to)
{
    constexpr std::size_t kHead = 2;
    constexpr std::size_t kTail = 4;
    constexpr unsigned kMatchesIn32Kib = 0x78;
    constexpr unsigned kDictionary = 0x20;
    if (stream.size() < kHead + kTail || stream[0] != kMatchesIn32Kib || (stream[1] & kDictionary) != 0 ||
        (stream[0] * 256U + stream[1]) % 31U != 0) {
        return false;
    }
    return Inflater().inflate(stream.subspan(kHead, stream.size() - kHead - kTail), to) &&
           libdeflate_adler32(1, to.data(), to.size()) == png_get_uint_32(stream.last(kTail).data());
}

/// Brings the bytes of a row, whose samples have the high byte first, into the machine's order.
void take_row(std::uint8_t const* from, std::span<std::uint8_t> to, std::size_t sample_bytes)
{
    if (sample_bytes == 1 || std::endian::native == std::endian::big) {
        std::copy_n(from, to.size(), to.begin());
        return;
    }
    for (std::size_t i = 0; i < to.size(); i += 2) {
        to[i] = from[i + 1];
        to[i + 1] = from[i];
    }
}

/// The filtered rows of a picture, the top one first, each behind the number of its filter.
class FilteredRows {
public:
    FilteredRows(std::span<std::uint8_t const> rows, Picture& picture)
        : rows_(rows), picture_(picture), count_(static_cast<std::size_t>(picture.height)),
          bytes_(picture.bytes.size() / count_)
    {
    }

    /// Where the parts begin that need no row above, and behind them the number of rows. Nothing if there is
    /// a filter of no such number.
    std::optional<std::vector<std::size_t>> parts() const
    {
        constexpr std::size_t kLeastRows = 64; // of a part that is worth a thread's turn
        std::vector<std::size_t> starts{0};
        for (std::size_t y = 0; y < count_; ++y) {
            if (filtered(y)[0] >= std::size(kPngFilters)) {
                return {};
            }
            bool const needs_above = filter(y) != PngFilter::kNone && filter(y) != PngFilter::kSub;
            if (!needs_above && y - starts.back() >= kLeastRows) {
                starts.push_back(y);
            }
        }
        starts.push_back(count_);
        return starts;
    }

    /// Puts rows @p first to @p last - 1, which are a part, into the picture.
    void restore(std::size_t first, std::size_t last) const
    {
        std::size_t const sample_bytes = sample_size(picture_.type);
        std::size_t const step = sample_bytes * static_cast<std::size_t>(picture_.channels);
        std::vector<std::uint8_t> above(bytes_ + kBehindPngRow);
        std::vector<std::uint8_t> row(bytes_ + kBehindPngRow);
        for (std::size_t y = first; y < last; ++y) {
            std::copy_n(filtered(y) + 1, bytes_, row.begin());
            unfilter_row(filter(y), {row.data(), bytes_}, above.data(), step);
            take_row(row.data(), {&picture_.bytes[(count_ - 1 - y) * bytes_], bytes_}, sample_bytes);
            row.swap(above);
        }
    }

private:
    std::uint8_t const* filtered(std::size_t y) const { return &rows_[y * (1 + bytes_)]; }
    PngFilter filter(std::size_t y) const { return static_cast<PngFilter>(filtered(y)[0]); }

    std::span<std::uint8_t const> rows_;
    Picture& picture_;
    std::size_t count_;
    std::size_t bytes_; ///< Of a row.
};

} // namespace

bool read_png_texels(SourceFile& source, std::size_t length, Picture& picture)
{
    std::size_t const size = picture.bytes.size() + static_cast<std::size_t>(picture.height);
    auto const packed = packed_rows(source, length, size + size / 8 + 65536); // noise does not get smaller
    if (!packed) {
        return false;
    }
    auto const filtered = std::make_unique_for_overwrite<std::uint8_t[]>(size);
    if (!unpack(*packed, {filtered.get(), size})) {
        return false;
    }
    FilteredRows const rows({filtered.get(), size}, picture);
    auto const parts = rows.parts();
    if (!parts) {
        return false;
    }
    std::size_t const count = parts->size() - 1;
    on_all_threads(count, [&](auto next) {
        for (std::size_t i = next(); i < count; i = next()) {
            rows.restore((*parts)[i], (*parts)[i + 1]);
        }
    });
    return true;
}

} // namespace umbrixlib::toolkit
