// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"

#include <cstddef>
#include <cstdint>

namespace umbrixlib::toolkit {

enum class TiffNumbers { kUnsigned, kSigned, kFloat };

/// Samples as TIFF has them: whole numbers of 1 to 32 bits, floats of 16, 24, 32 and 64.
struct TiffSamples {
    unsigned bits = 8;
    TiffNumbers numbers = TiffNumbers::kUnsigned;
    bool white_is_zero = false; ///< Of unsigned numbers: 0 stands for 1, and the largest for 0.
    bool indexes = false;       ///< Numbers of colours, which are not spread over what a sample can hold.

    /// The sample type that holds all that the file says.
    SampleType type() const;
};

/// Rows begin at a byte of their own.
constexpr std::uint64_t bytes_of_row(std::uint64_t texels, std::uint64_t samples, std::uint64_t bits)
{
    return (texels * samples * bits + 7) / 8;
}

/// Makes samples of type() of one row.
///
/// @param row   Bits packed from the high end; numbers of 16, 24, 32 and 64 bits in the machine's order.
/// @param to    Takes @p count samples.
void unpack(TiffSamples const& form, std::uint8_t const* row, std::size_t count, std::uint8_t* to);

} // namespace umbrixlib::toolkit
