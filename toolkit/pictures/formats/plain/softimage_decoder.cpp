// SPDX-License-Identifier: MIT
#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/formats/plain/rows.h"

#include <algorithm>

namespace umbrixlib::toolkit {

namespace {

constexpr std::size_t kSizeAt = 92;
constexpr std::size_t kPacketsAt = 104;
constexpr std::size_t kMostPackets = 8;
constexpr double kLongestRun = 65535;
constexpr std::uint8_t kAlpha = 0x10;

/// Some channels of a picture, which lie together in each row.
struct Packet {
    unsigned compression;
    std::vector<std::size_t> channels; ///< Of the picture.
};

struct Header {
    int width;
    int height;
    int channels;
    std::vector<Packet> packets;
};

Header read_header(ByteReader& reader)
{
    SourceFile const& source = reader.source();
    reader.go_to(kSizeAt);
    Header header{reader.u16(), reader.u16(), 3, {}};
    source.check_size(header.width, header.height);
    reader.go_to(kPacketsAt);
    for (bool more = true; more;) {
        more = reader.u8() != 0;
        unsigned const bits = reader.u8();
        Packet packet{reader.u8(), {}};
        unsigned const codes = reader.u8();
        for (std::size_t channel = 0; channel < 4; ++channel) { // red, green, blue, alpha
            if ((codes & 0x80U >> channel) != 0) {
                packet.channels.push_back(channel);
            }
        }
        header.channels = (codes & kAlpha) != 0 ? 4 : header.channels;
        if (bits != 8 || packet.compression > 2 || packet.channels.empty() ||
            header.packets.size() >= kMostPackets) {
            source.refuse_as_damaged();
        }
        header.packets.push_back(std::move(packet));
    }
    return header;
}

class RowReader {
public:
    RowReader(ByteReader& reader, Packet const& packet, std::span<std::uint8_t> row, std::size_t step)
        : reader_(reader), packet_(packet), row_(row), step_(step)
    {
    }

    void read()
    {
        while (!row_.empty()) {
            if (packet_.compression == 0) {
                put_texels(row_.size() / step_);
            } else if (packet_.compression == 1) {
                put_run(reader_.u8());
            } else {
                put_mixed();
            }
        }
    }

private:
    /// Runs, of which a count of 16 bits may follow, and stretches as they are.
    void put_mixed()
    {
        std::size_t const count = reader_.u8();
        if (count < 128) {
            put_texels(count + 1);
        } else {
            put_run(count == 128 ? reader_.u16() : count - 127);
        }
    }

    void put_run(std::size_t texels)
    {
        auto const values = reader_.take(packet_.channels.size());
        check(texels);
        for (std::size_t i = 0; i < texels; ++i) {
            put(values);
        }
    }

    void put_texels(std::size_t texels)
    {
        check(texels);
        for (std::size_t i = 0; i < texels; ++i) {
            put(reader_.take(packet_.channels.size()));
        }
    }

    void check(std::size_t texels) const
    {
        if (texels == 0 || texels * step_ > row_.size()) {
            reader_.source().refuse_as_damaged();
        }
    }

    void put(std::span<std::uint8_t const> values)
    {
        for (std::size_t i = 0; i < values.size(); ++i) {
            row_[packet_.channels[i]] = values[i];
        }
        row_ = row_.subspan(step_);
    }

    ByteReader& reader_;
    Packet const& packet_;
    std::span<std::uint8_t> row_;
    std::size_t step_; ///< Samples of a texel.
};

/// Softimage's pictures.
class SoftimageDecoder : public Decoder {
public:
    bool takes(SourceFile const& source) const override { return source.begins_with("\x53\x80\xf6\x34"); }

    DecodedFile decode(SourceFile& source) const override
    {
        ByteReader reader(source, ByteOrder::kBig);
        Header const header = read_header(reader);
        source.check_length(static_cast<double>(header.width) * header.height / kLongestRun);
        Picture picture = make_picture(header.width, header.height, header.channels);
        for (int y = 0; y < header.height; ++y) {
            for (Packet const& packet : header.packets) {
                RowReader(reader, packet, row_from_top<std::uint8_t>(picture, y),
                          static_cast<std::size_t>(header.channels))
                    .read();
            }
        }
        return {std::move(picture), false, "Softimage"};
    }
};

} // namespace

Decoder const& softimage_decoder()
{
    static SoftimageDecoder const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
