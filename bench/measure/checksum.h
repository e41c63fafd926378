// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

namespace umbrixlib::bench {

/// 64 bits in hexadecimal that show in a record what came out of the work that was timed (FNV-1a).
inline std::string checksum(void const* data, std::size_t size)
{
    auto const* const bytes = static_cast<unsigned char const*>(data);
    std::uint64_t sum = 0xcbf29ce484222325U;
    for (std::size_t i = 0; i < size; ++i) {
        sum = (sum ^ bytes[i]) * 0x100000001b3U;
    }
    std::ostringstream text;
    text << std::hex << sum;
    return text.str();
}

template <typename Pixel>
std::string checksum(std::vector<Pixel> const& pixels)
{
    return checksum(pixels.data(), pixels.size() * sizeof(Pixel));
}

} // namespace umbrixlib::bench
