// SPDX-License-Identifier: MIT
#include "toolkit/base/text.h"
#include "toolkit/pictures/formats/plain/dib.h"

#include <algorithm>
#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

constexpr std::uint32_t kPngStart = 0x474e5089;

struct Entry {
    int texels;
    int bits;
    std::size_t at;
};

/// That of the largest picture; of those of one size, the one with the most bits.
Entry largest_entry(ByteReader& reader, std::size_t count)
{
    Entry largest{};
    for (std::size_t i = 0; i < count; ++i) {
        auto const side = [&] {
            int const stored = reader.u8();
            return stored == 0 ? 256 : stored;
        };
        int const width = side();
        int const height = side();
        reader.skip(4);
        Entry entry{width * height, reader.u16(), 0};
        reader.skip(4);
        entry.at = reader.u32();
        if (entry.texels > largest.texels || (entry.texels == largest.texels && entry.bits > largest.bits)) {
            largest = entry;
        }
    }
    return largest;
}

class IcoDecoder : public Decoder {
public:
    /// A pointer's first bytes could be those of another format: it has to be called one.
    bool takes(SourceFile const& source) const override
    {
        using namespace std::string_view_literals;
        return source.begins_with("\0\0\1\0"sv) ||
               (source.begins_with("\0\0\2\0"sv) && lower_case(source.path().extension().string()) == ".cur");
    }

    DecodedFile decode(SourceFile& source) const override
    {
        ByteReader reader(source);
        reader.skip(4);
        std::size_t const count = reader.u16();
        if (count == 0) {
            source.refuse_as_damaged();
        }
        reader.go_to(largest_entry(reader, count).at);
        std::size_t const start = reader.at();
        if (reader.u32() == kPngStart) {
            source.refuse("it is an icon that holds a PNG picture", "save it as PNG");
        }
        reader.go_to(start);
        DibHeader const header = read_dib_header(reader, true);
        DecodedFile file = read_dib(reader, header, 0);
        file.format = "ICO";
        if (count > 1) {
            file.notes.push_back(fmt::format("the largest of its {} pictures is taken", count));
        }
        return file;
    }
};

} // namespace

Decoder const& ico_decoder()
{
    static IcoDecoder const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
