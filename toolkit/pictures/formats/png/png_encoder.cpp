// SPDX-License-Identifier: MIT
#include "toolkit/base/all_threads.h"
#include "toolkit/pictures/encoder.h"
#include "toolkit/pictures/formats/encoders/byte_writer.h"
#include "toolkit/pictures/formats/encoders/output_stream.h"
#include "toolkit/pictures/formats/png/png_packing.h"

namespace umbrixlib::toolkit {

namespace {

constexpr std::size_t kSamePlan = 8;     ///< Pieces that one of them speaks for.
constexpr std::size_t kHeldPieces = 128; ///< Packed before they are written.

/// The Adler-32 of two strings, one behind the other, of theirs and the length of the second.
std::uint32_t joined_adler(std::uint32_t first, std::uint32_t second, std::size_t second_length)
{
    constexpr std::uint64_t kBase = 65521;
    std::uint64_t const low = first & 0xffffU;
    std::uint64_t const joined_low = (low + (second & 0xffffU) + kBase - 1) % kBase;
    std::uint64_t const joined_high =
        ((first >> 16U) + (second >> 16U) + (low + kBase - 1) % kBase * (second_length % kBase)) % kBase;
    return static_cast<std::uint32_t>(joined_high << 16U | joined_low);
}

/// One file.
class PngWriter {
public:
    PngWriter(OutputStream& stream, Picture const& picture)
        : stream_(stream), picture_(picture), rows_(picture)
    {
    }

    bool write()
    {
        constexpr std::uint8_t kSignature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
        return stream_.write(kSignature) && write_header() && write_attributes() && write_rows() &&
               write_chunk("IEND", {});
    }

private:
    bool write_header()
    {
        constexpr unsigned kColourTypes[] = {0, 4, 2, 6};
        ByteWriter header(ByteOrder::kBig);
        header.u32(static_cast<unsigned>(picture_.width)).u32(static_cast<unsigned>(picture_.height));
        header.u8(static_cast<unsigned>(8 * sample_size(picture_.type)));
        header.u8(kColourTypes[picture_.channels - 1]).u8(0).u8(0).u8(0);
        return write_chunk("IHDR", header.bytes());
    }

    bool write_attributes()
    {
        if (picture_.attributes.empty()) {
            return true;
        }
        ByteWriter text;
        text.text("Umbrix").u8(0);    // the keyword
        text.u8(0).u8(0).u8(0).u8(0); // not packed, in no language, with no other keyword
        return write_chunk("iTXt", text.text(attribute_text(picture_.attributes)).bytes());
    }

    bool write_chunk(std::string_view name, std::span<std::uint8_t const> content)
    {
        ByteWriter start(ByteOrder::kBig);
        start.u32(static_cast<unsigned>(content.size())).text(name);
        std::uint32_t check = libdeflate_crc32(0, start.bytes().data() + 4, 4);
        if (!content.empty()) { // of no bytes libdeflate gives what a check sum starts with
            check = libdeflate_crc32(check, content.data(), content.size());
        }
        return stream_.write(start.bytes()) && stream_.write(content) &&
               stream_.write(ByteWriter(ByteOrder::kBig).u32(check).bytes());
    }

    /// One zlib stream, a piece in each chunk. The pieces do not depend on the number of threads.
    bool write_rows()
    {
        constexpr std::uint8_t kStart[] = {0x78, 0x5e}; // Deflate with a window of 32 KiB, at a fast level
        bool good = write_chunk("IDAT", kStart);
        for (std::size_t first = 0; good && first < rows_.pieces(); first += kHeldPieces) {
            good = write_pieces(first, std::min(kHeldPieces, rows_.pieces() - first));
        }
        ByteWriter end(ByteOrder::kBig);
        end.u8(0b011).u8(0).u32(adler_); // a last block, which is empty
        return good && write_chunk("IDAT", end.bytes());
    }

    bool write_pieces(std::size_t first, std::size_t count)
    {
        std::vector<PngPlan> plans((count - 1) / kSamePlan + 1);
        on_all_threads(plans.size(), [&](auto next) {
            PngPacker packer(rows_);
            for (std::size_t i = next(); i < plans.size(); i = next()) {
                plans[i] = packer.plan(first + i * kSamePlan, kSamePlan);
            }
        });
        std::vector<PngPacker::Packed> packed(count);
        on_all_threads(count, [&](auto next) {
            PngPacker packer(rows_);
            for (std::size_t i = next(); i < count; i = next()) {
                packed[i] = packer.pack(first + i, plans[i / kSamePlan]);
            }
        });
        bool good = true;
        for (std::size_t i = 0; good && i < count; ++i) {
            adler_ = joined_adler(adler_, packed[i].adler, packed[i].length);
            good = write_chunk("IDAT", packed[i].bytes);
        }
        return good;
    }

    OutputStream& stream_;
    Picture const& picture_;
    PngRows rows_;
    std::uint32_t adler_ = 1;
};

/// Each number of channels, in 8 or 16 bits.
class PngEncoder : public Encoder {
public:
    bool encode(std::filesystem::path const& file, Picture const& picture) const override
    {
        if (picture.type != SampleType::kUint8 && picture.type != SampleType::kUint16) {
            return false;
        }
        OutputStream stream(file);
        bool const written = PngWriter(stream, picture).write();
        return stream.close() && written;
    }
};

} // namespace

Encoder const& png_encoder()
{
    static PngEncoder const encoder;
    return encoder;
}

} // namespace umbrixlib::toolkit
