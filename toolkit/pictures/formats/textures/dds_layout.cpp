// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/textures/dds_layout.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

constexpr unsigned kHeaderSize = 124;
constexpr unsigned kPixelFormatSize = 32;
constexpr unsigned kHasPitch = 0x8;
constexpr unsigned kHasDepth = 0x800000;

// Of a pixel format.
constexpr unsigned kHasAlpha = 0x1;
constexpr unsigned kIsAlpha = 0x2;
constexpr unsigned kHasCode = 0x4;
constexpr unsigned kHasRgb = 0x40;
constexpr unsigned kHasLuminance = 0x20000;

// Of what is in the file.
constexpr unsigned kIsCube = 0x200;
constexpr unsigned kIsCubeInDx10 = 0x4;

constexpr char const* kRemedy = "save it as BC1 to BC5 or without compression";

constexpr unsigned code_of(char const (&letters)[5])
{
    return static_cast<unsigned>(letters[0]) | static_cast<unsigned>(letters[1]) << 8U |
           static_cast<unsigned>(letters[2]) << 16U | static_cast<unsigned>(letters[3]) << 24U;
}

/// A code in letters, if they are, else as a number.
std::string name_of(unsigned code)
{
    std::string name;
    for (unsigned left = code; left != 0; left >>= 8U) {
        auto const letter = static_cast<char>(left & 255U);
        if (letter < ' ' || letter > '~') {
            return fmt::format("{}", code);
        }
        name += letter;
    }
    return name;
}

/// By the code of a file without a DX10 header; false if there is none such.
bool set_by_code(unsigned code, TexelLayout& layout)
{
    struct Row {
        unsigned code;
        BlockForm form;
        bool premultiplied;
    };
    constexpr Row kBlocks[] = {
        {code_of("DXT1"), BlockForm::kBc1, false},       {code_of("DXT2"), BlockForm::kBc2, true},
        {code_of("DXT3"), BlockForm::kBc2, false},       {code_of("DXT4"), BlockForm::kBc3, true},
        {code_of("DXT5"), BlockForm::kBc3, false},       {code_of("RXGB"), BlockForm::kBc3, false},
        {code_of("ATI1"), BlockForm::kBc4, false},       {code_of("BC4U"), BlockForm::kBc4, false},
        {code_of("BC4S"), BlockForm::kBc4Signed, false}, {code_of("ATI2"), BlockForm::kBc5, false},
        {code_of("BC5U"), BlockForm::kBc5, false},       {code_of("BC5S"), BlockForm::kBc5Signed, false}};
    for (Row const& row : kBlocks) {
        if (row.code == code) {
            layout.blocks = row.form;
            layout.premultiplied = row.premultiplied;
            layout.alpha_is_red = code == code_of("RXGB");
            return true;
        }
    }
    auto const samples = [&](SampleType type, int channels) {
        layout.samples = type;
        layout.channels = channels;
        return true;
    };
    switch (code) { // Direct3D's numbers of formats
    case 36:
        return samples(SampleType::kUint16, 4);
    case 111:
        return samples(SampleType::kHalf, 1);
    case 112:
        return samples(SampleType::kHalf, 2);
    case 113:
        return samples(SampleType::kHalf, 4);
    case 114:
        return samples(SampleType::kFloat, 1);
    case 115:
        return samples(SampleType::kFloat, 2);
    case 116:
        return samples(SampleType::kFloat, 4);
    default:
        return false;
    }
}

/// By DXGI's number of a format; false if it is none that is taken.
bool set_by_number(unsigned number, TexelLayout& layout)
{
    auto const blocks = [&](BlockForm form) {
        layout.blocks = form;
        return true;
    };
    auto const samples = [&](SampleType type, int channels) {
        layout.samples = type;
        layout.channels = channels;
        return true;
    };
    auto const masks = [&](int bits, std::vector<std::uint32_t> values) {
        layout.bits = bits;
        layout.masks = std::move(values);
        return true;
    };
    switch (number) {
    case 2:
        return samples(SampleType::kFloat, 4);
    case 6:
        return samples(SampleType::kFloat, 3);
    case 10:
        return samples(SampleType::kHalf, 4);
    case 11:
        return samples(SampleType::kUint16, 4);
    case 16:
        return samples(SampleType::kFloat, 2);
    case 24:
        return masks(32, {0x3ff, 0xffc00, 0x3ff00000, 0xc0000000});
    case 27:
    case 28:
    case 29:
        return masks(32, {0xff, 0xff00, 0xff0000, 0xff000000});
    case 34:
        return samples(SampleType::kHalf, 2);
    case 35:
        return masks(32, {0xffff, 0xffff0000});
    case 41:
        return samples(SampleType::kFloat, 1);
    case 49:
        return masks(16, {0xff, 0xff00});
    case 54:
        return samples(SampleType::kHalf, 1);
    case 56:
        return masks(16, {0xffff});
    case 61:
    case 65:
        return masks(8, {0xff});
    case 70:
    case 71:
    case 72:
        return blocks(BlockForm::kBc1);
    case 73:
    case 74:
    case 75:
        return blocks(BlockForm::kBc2);
    case 76:
    case 77:
    case 78:
        return blocks(BlockForm::kBc3);
    case 79:
    case 80:
        return blocks(BlockForm::kBc4);
    case 81:
        return blocks(BlockForm::kBc4Signed);
    case 82:
    case 83:
        return blocks(BlockForm::kBc5);
    case 84:
        return blocks(BlockForm::kBc5Signed);
    case 85:
        return masks(16, {0xf800, 0x7e0, 0x1f});
    case 86:
        return masks(16, {0x7c00, 0x3e0, 0x1f, 0x8000});
    case 87:
    case 90:
    case 91:
        return masks(32, {0xff0000, 0xff00, 0xff, 0xff000000});
    case 88:
    case 92:
    case 93:
        return masks(32, {0xff0000, 0xff00, 0xff});
    case 115:
        return masks(16, {0xf00, 0xf0, 0xf, 0xf000});
    default:
        return false;
    }
}

void read_dx10_header(ByteReader& reader, TexelLayout& layout)
{
    SourceFile const& source = reader.source();
    unsigned const number = reader.u32();
    reader.skip(4);
    bool const cube = (reader.u32() & kIsCubeInDx10) != 0;
    unsigned const array = reader.u32();
    layout.premultiplied = (reader.u32() & 7U) == 2;
    if (number >= 94 && number <= 99) {
        source.refuse(fmt::format("it is a DDS file with {} compression", number < 97 ? "BC6H" : "BC7"),
                      kRemedy);
    }
    if (!set_by_number(number, layout)) {
        source.refuse(fmt::format("it is a DDS file of the DXGI format {}", number), kRemedy);
    }
    if (number == 29 || number == 72 || number == 75 || number == 78 || number == 91 || number == 93) {
        layout.notes.emplace_back("its mark as sRGB is left alone: values count as they are");
    }
    if (cube) {
        layout.notes.emplace_back("the first face of its cube is taken");
    }
    if (array > 1) {
        layout.notes.emplace_back(fmt::format("the first of its {} pictures is taken", array));
    }
}

struct PixelFormat {
    unsigned flags;
    unsigned code;
    unsigned bits; ///< Of a texel; with ATI2, some writers have a second code here.
    std::uint32_t masks[4];

    /// ATI's own form has the block of green first.
    bool has_green_first() const { return code == code_of("ATI2") && bits != code_of("A2XY"); }
    bool has(unsigned flag) const { return (flags & flag) != 0; }
};

void set_by_masks(SourceFile const& source, PixelFormat const& format, TexelLayout& layout)
{
    bool const has_alpha = format.has(kHasAlpha) && format.masks[3] != 0;
    layout.bits = static_cast<int>(std::min(format.bits, 64U));
    if (format.has(kHasRgb)) {
        // A channel without bits, and those behind it, are not there.
        for (std::size_t i = 0; i < 3 && format.masks[i] != 0; ++i) {
            layout.masks.push_back(format.masks[i]);
        }
        layout.is_vectors = layout.masks.size() == 2 && !has_alpha;
        if (layout.masks.size() == 2 && has_alpha) {
            source.refuse("it is a DDS file of red, green and alpha", "save it with a blue channel");
        }
    } else if (format.has(kHasLuminance)) {
        layout.masks = {format.masks[0]};
    } else if (format.has(kIsAlpha)) {
        layout.masks = {format.masks[3]};
        return;
    } else {
        source.refuse(fmt::format("it is a DDS file of {}", (format.flags & 0x200U) != 0
                                                                ? "luma and chroma (YUV)"
                                                            : (format.flags & 0x28U) != 0 ? "a palette"
                                                                                          : "signed numbers"),
                      kRemedy);
    }
    if (has_alpha) {
        layout.masks.push_back(format.masks[3]);
    }
}

} // namespace

TexelLayout read_dds_layout(ByteReader& reader)
{
    SourceFile const& source = reader.source();
    reader.skip(4);
    if (reader.u32() != kHeaderSize) {
        source.refuse_as_damaged();
    }
    unsigned const flags = reader.u32();
    double const height = reader.u32();
    double const width = reader.u32();
    source.check_size(width, height);
    TexelLayout layout;
    layout.width = static_cast<int>(width);
    layout.height = static_cast<int>(height);
    unsigned const pitch = reader.u32();
    layout.pitch = (flags & kHasPitch) != 0 ? pitch : 0;
    unsigned const depth = reader.u32();
    reader.go_to(76);
    if (reader.u32() != kPixelFormatSize) {
        source.refuse_as_damaged();
    }
    PixelFormat const format{
        reader.u32(), reader.u32(), reader.u32(), {reader.u32(), reader.u32(), reader.u32(), reader.u32()}};
    reader.skip(4);
    unsigned const what = reader.u32();
    reader.go_to(4 + kHeaderSize);
    if (format.has(kHasCode) && format.code == code_of("DX10")) {
        read_dx10_header(reader, layout);
    } else if (!format.has(kHasCode)) {
        set_by_masks(source, format, layout);
    } else if (!set_by_code(format.code, layout)) {
        source.refuse(fmt::format("it is a DDS file of the form {}", name_of(format.code)), kRemedy);
    }
    if (format.has(kHasCode)) {
        layout.green_first = format.has_green_first();
        layout.is_vectors = layout.channels == 2 || layout.masks.size() == 2 ||
                            layout.blocks == BlockForm::kBc5 || layout.blocks == BlockForm::kBc5Signed;
    }
    if (layout.notes.empty() && (what & kIsCube) != 0) {
        layout.notes.emplace_back("the first face of its cube is taken");
    }
    if ((flags & kHasDepth) != 0 && depth > 1) {
        layout.notes.emplace_back(fmt::format("the first of its {} slices is taken", depth));
    }
    if (!layout.masks.empty() && layout.bits != 8 && layout.bits != 16 && layout.bits != 24 &&
        layout.bits != 32) {
        source.refuse_as_damaged();
    }
    return layout;
}

} // namespace umbrixlib::toolkit
