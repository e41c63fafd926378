// SPDX-License-Identifier: MIT
#include "toolkit/base/all_threads.h"
#include "toolkit/pictures/encoder.h"
#include "toolkit/pictures/formats/deflate/adler.h"
#include "toolkit/pictures/formats/encoders/output_stream.h"
#include "toolkit/pictures/formats/png/png_check.h"
#include "toolkit/pictures/formats/png/png_frame.h"
#include "toolkit/pictures/formats/png/png_packing.h"
#include "toolkit/pictures/png_bytes.h"

#include <span>
#include <utility>
#include <vector>

namespace umbrixlib::toolkit {

namespace {

constexpr std::size_t kSamePlan = 32;    ///< Pieces that one of them speaks for.
constexpr std::size_t kHeldPieces = 128; ///< Packed before they are written.

/// What a file is written to that stays in memory.
struct ByteSink {
    std::vector<std::uint8_t> bytes{};

    bool write(std::span<std::uint8_t const> more)
    {
        bytes.insert(bytes.end(), more.begin(), more.end());
        return true;
    }
};

/// One file.
template <typename Stream>
class PngWriter {
public:
    PngWriter(Stream& stream, Picture const& picture, Compression compression)
        : stream_(stream), picture_(picture), compression_(compression), rows_(picture)
    {
    }

    /// The pieces do not depend on the number of threads.
    bool write()
    {
        bool good = stream_.write(png_start(picture_));
        for (std::size_t first = 0; good && first < rows_.pieces(); first += kHeldPieces) {
            good = write_pieces(first, std::min(kHeldPieces, rows_.pieces() - first));
        }
        return good && stream_.write(png_end(adler_));
    }

private:
    bool write_pieces(std::size_t first, std::size_t count)
    {
        std::vector<PngPlan> plans((count - 1) / kSamePlan + 1);
        on_all_threads(plans.size(), [&](auto next) {
            PngPacker packer(rows_, compression_);
            for (std::size_t i = next(); i < plans.size(); i = next()) {
                plans[i] = packer.plan(first + i * kSamePlan, kSamePlan);
            }
        });
        std::vector<PngPacker::Packed> packed(count);
        on_all_threads(count, [&](auto next) {
            PngPacker packer(rows_, compression_);
            for (std::size_t i = next(); i < count; i = next()) {
                packed[i] = packer.pack(first + i, plans[i / kSamePlan]);
            }
        });
        bool good = true;
        for (std::size_t i = 0; good && i < count; ++i) {
            adler_ = joined_adler(adler_, packed[i].adler, packed[i].length);
            good = stream_.write(png_piece_head(packed[i].bytes.size())) && stream_.write(packed[i].bytes) &&
                   stream_.write(png_piece_tail(packed[i].bytes));
        }
        return good;
    }

    Stream& stream_;
    Picture const& picture_;
    Compression compression_;
    PngRows rows_;
    std::uint32_t adler_ = 1;
};

/// Each number of channels, in 8 or 16 bits.
class PngEncoder : public Encoder {
public:
    bool encode(std::filesystem::path const& file, Picture const& picture) const override
    {
        return encode_as(file, picture, Compression::kDefault);
    }

    bool encode_as(std::filesystem::path const& file, Picture const& picture,
                   Compression compression) const override
    {
        if (picture.type != SampleType::kUint8 && picture.type != SampleType::kUint16) {
            return false;
        }
        OutputStream stream(file);
        bool const written = PngWriter(stream, picture, compression).write();
        return stream.close() && written;
    }

    std::optional<bool> holds(std::filesystem::path const& file, Picture const& picture) const override
    {
        return png_holds(file, picture);
    }
};

} // namespace

std::vector<std::uint8_t> png_bytes(Picture const& picture, Compression compression)
{
    ByteSink sink;
    PngWriter(sink, picture, compression).write();
    return std::move(sink.bytes);
}

Encoder const& png_encoder()
{
    static PngEncoder const encoder;
    return encoder;
}

} // namespace umbrixlib::toolkit
