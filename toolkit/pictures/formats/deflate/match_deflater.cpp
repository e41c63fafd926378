// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/deflate/match_deflater.h"

#include "toolkit/pictures/formats/deflate/last_block.h"

#include <new>

namespace umbrixlib::toolkit {

MatchDeflater::MatchDeflater(int level) : compressor_(libdeflate_alloc_compressor(level))
{
    if (compressor_ == nullptr) {
        throw std::bad_alloc();
    }
}

std::span<std::uint8_t> MatchDeflater::deflate(std::span<std::uint8_t const> bytes)
{
    packed_.resize(libdeflate_deflate_compress_bound(compressor_.get(), bytes.size()));
    std::size_t const size = libdeflate_deflate_compress(compressor_.get(), bytes.data(), bytes.size(),
                                                         packed_.data(), packed_.size());
    return std::span(packed_).first(size);
}

std::size_t MatchDeflater::size_of(std::span<std::uint8_t const> bytes)
{
    return deflate(bytes).size();
}

bool MatchDeflater::append(std::span<std::uint8_t const> bytes, std::vector<std::uint8_t>& to)
{
    std::span<std::uint8_t> const stream = deflate(bytes);
    auto const last = find_last_block(stream);
    if (!last) {
        return false;
    }
    stream[static_cast<std::size_t>(last->begin / 8)] &=
        static_cast<std::uint8_t>(~(1U << last->begin % 8)); // it is not the last one now
    to.insert(to.end(), stream.begin(), stream.end());
    // An empty block of stored bytes: three bits of 0, zeros to the end of the byte, its length.
    to.resize(to.size() - stream.size() + static_cast<std::size_t>((last->end + 3 + 7) / 8));
    to.insert(to.end(), {0, 0, 0xff, 0xff});
    return true;
}

} // namespace umbrixlib::toolkit
