// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/deflate/inflater.h"

#include <new>

namespace umbrixlib::toolkit {

Inflater::Inflater() : inflater_(libdeflate_alloc_decompressor())
{
    if (inflater_ == nullptr) {
        throw std::bad_alloc();
    }
}

bool Inflater::inflate(std::span<std::uint8_t const> stream, std::span<std::uint8_t> to)
{
    std::size_t taken = 0;
    libdeflate_result const result = libdeflate_deflate_decompress_ex(
        inflater_.get(), stream.data(), stream.size(), to.data(), to.size(), &taken, nullptr);
    return result == LIBDEFLATE_SUCCESS && taken == stream.size();
}

} // namespace umbrixlib::toolkit
