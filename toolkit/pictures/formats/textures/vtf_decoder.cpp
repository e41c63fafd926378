// SPDX-License-Identifier: MIT
#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/formats/textures/texel_layout.h"

#include <algorithm>
#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

using namespace std::string_view_literals;

constexpr unsigned kIsCube = 0x4000;
constexpr unsigned kTexels = 0x30; ///< The name of the picture among the parts of a file.
constexpr unsigned kNoFormat = 0xffffffff;

/// False if the format is none that is taken.
bool set_format(unsigned format, TexelLayout& layout)
{
    auto const masks = [&](int bits, std::vector<std::uint32_t> values) {
        layout.bits = bits;
        layout.masks = std::move(values);
        return true;
    };
    auto const blocks = [&](BlockForm form) {
        layout.blocks = form;
        return true;
    };
    auto const samples = [&](SampleType type) {
        layout.samples = type;
        layout.channels = 4;
        return true;
    };
    switch (format) {
    case 0:
        return masks(32, {0xff, 0xff00, 0xff0000, 0xff000000});
    case 1:
        return masks(32, {0xff000000, 0xff0000, 0xff00, 0xff});
    case 2:
        return masks(24, {0xff, 0xff00, 0xff0000});
    case 3:
        return masks(24, {0xff0000, 0xff00, 0xff});
    case 5:
    case 8:
        return masks(8, {0xff});
    case 6:
        return masks(16, {0xff, 0xff00});
    case 12:
        return masks(32, {0xff0000, 0xff00, 0xff, 0xff000000});
    case 13:
    case 20:
        return blocks(BlockForm::kBc1);
    case 14:
        return blocks(BlockForm::kBc2);
    case 15:
        return blocks(BlockForm::kBc3);
    case 16:
        return masks(32, {0xff0000, 0xff00, 0xff});
    case 24:
        return samples(SampleType::kHalf);
    case 25:
        return samples(SampleType::kUint16);
    default:
        return false;
    }
}

/// Where the texels are: behind the small picture and the smaller ones, or where a newer header says.
std::size_t place_of_texels(ByteReader& reader, unsigned version, std::size_t header_size,
                            TexelLayout const& layout, double pictures, int levels)
{
    if (version >= 3) {
        reader.go_to(68);
        std::size_t parts = std::min<std::size_t>(reader.u32(), 32);
        for (reader.go_to(80); parts > 0; --parts) {
            unsigned const name = reader.u32();
            std::size_t const place = reader.u32();
            if ((name & 0xffffffU) == kTexels) {
                header_size = place;
            }
        }
    } else {
        reader.go_to(57);
        TexelLayout small;
        unsigned const format = reader.u32();
        small.width = reader.u8();
        small.height = reader.u8();
        if (format != kNoFormat && set_format(format, small)) {
            header_size += static_cast<std::size_t>(small.size());
        }
    }
    double place = static_cast<double>(header_size);
    for (int level = 1; level < levels; ++level) {
        TexelLayout smaller = layout;
        smaller.width = std::max(1, layout.width >> level);
        smaller.height = std::max(1, layout.height >> level);
        place += smaller.size() * pictures;
    }
    if (place > static_cast<double>(reader.at() + reader.left())) {
        reader.source().refuse_as_damaged();
    }
    return static_cast<std::size_t>(place);
}

/// Valve's textures: the first picture of the largest size.
class VtfDecoder : public Decoder {
public:
    bool takes(SourceFile const& source) const override { return source.begins_with("VTF\0"sv); }

    DecodedFile decode(SourceFile& source) const override
    {
        ByteReader reader(source);
        reader.skip(4);
        unsigned const major = reader.u32();
        unsigned const version = reader.u32();
        std::size_t const header_size = reader.u32();
        TexelLayout layout;
        layout.width = reader.u16();
        layout.height = reader.u16();
        unsigned const flags = reader.u32();
        unsigned const frames = reader.u16();
        reader.go_to(52);
        unsigned const format = reader.u32();
        int const levels = std::min<int>(reader.u8(), 16);
        source.check_size(layout.width, layout.height);
        if (major != 7 || version > 5 || header_size < 63 || frames < 1) {
            source.refuse_as_damaged();
        }
        if (!set_format(format, layout)) {
            source.refuse(fmt::format("it is a VTF file of the format {}", format), "save it as PNG");
        }
        double const faces = (flags & kIsCube) != 0 ? 6 : 1;
        reader.go_to(place_of_texels(reader, version, header_size, layout, frames * faces, levels));
        if (frames > 1) {
            layout.notes.push_back(fmt::format("the first of its {} frames is taken", frames));
        }
        if (faces > 1) {
            layout.notes.emplace_back("the first face of its cube is taken");
        }
        Picture picture = read_texels(reader, layout);
        return {std::move(picture), false, "VTF", std::move(layout.notes)};
    }
};

} // namespace

Decoder const& vtf_decoder()
{
    static VtfDecoder const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
