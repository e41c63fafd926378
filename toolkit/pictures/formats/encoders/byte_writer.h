// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/formats/encoders/output_stream.h"
#include "toolkit/pictures/formats/plain/byte_reader.h"
#include "toolkit/pictures/picture.h"

#include <string_view>
#include <vector>

namespace umbrixlib::toolkit {

/// Bytes of a file that is written: a header, or a row.
class ByteWriter {
public:
    explicit ByteWriter(ByteOrder order = ByteOrder::kLittle) : order_(order) {}

    ByteWriter& u8(unsigned number) { return put(number, 1); }
    ByteWriter& u16(unsigned number) { return put(number, 2); }
    ByteWriter& u32(unsigned number) { return put(number, 4); }
    ByteWriter& side(int texels) { return u16(static_cast<unsigned>(texels)); }
    ByteWriter& text(std::string_view letters)
    {
        bytes_.insert(bytes_.end(), letters.begin(), letters.end());
        return *this;
    }
    /// Zeros, until there are @p size bytes.
    ByteWriter& fill(std::size_t size)
    {
        bytes_.resize(size);
        return *this;
    }

    /// Each @p step th of @p samples in the order of bytes of the file.
    template <typename Sample>
    ByteWriter& samples(std::span<Sample const> samples, std::size_t step = 1)
    {
        for (std::size_t i = 0; i < samples.size(); i += step) {
            put(std::bit_cast<Bits<Sample>>(samples[i]), sizeof(Sample));
        }
        return *this;
    }

    std::span<std::uint8_t const> bytes() const { return bytes_; }

    /// Hands what there is to @p stream and begins anew. False if it could not be written.
    bool flush(OutputStream& stream)
    {
        bool const written = stream.write(bytes_);
        bytes_.clear();
        return written;
    }

private:
    template <typename Sample>
    using Bits = std::conditional_t<sizeof(Sample) == 1, std::uint8_t,
                                    std::conditional_t<sizeof(Sample) == 2, std::uint16_t, std::uint32_t>>;

    ByteWriter& put(std::uint32_t number, std::size_t size)
    {
        for (std::size_t i = 0; i < size; ++i) {
            std::size_t const shift = 8 * (order_ == ByteOrder::kBig ? size - 1 - i : i);
            bytes_.push_back(static_cast<std::uint8_t>(number >> shift));
        }
        return *this;
    }

    ByteOrder order_;
    std::vector<std::uint8_t> bytes_;
};

/// Row @p y of a picture, counted from the bottom.
template <typename Sample>
std::span<Sample const> row_of(Picture const& picture, int y)
{
    auto const samples = static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.channels);
    return picture.samples<Sample>().subspan(static_cast<std::size_t>(y) * samples, samples);
}

/// Appends row @p y, counted from the bottom: all samples, or those of channel @p first and each @p step th
/// behind it.
inline void append_row(ByteWriter& to, Picture const& picture, int y, std::size_t first = 0,
                       std::size_t step = 1)
{
    switch (picture.type) {
    case SampleType::kUint8:
        to.samples(row_of<std::uint8_t>(picture, y).subspan(first), step);
        break;
    case SampleType::kFloat:
        to.samples(row_of<float>(picture, y).subspan(first), step);
        break;
    default:
        to.samples(row_of<std::uint16_t>(picture, y).subspan(first), step);
    }
}

} // namespace umbrixlib::toolkit
