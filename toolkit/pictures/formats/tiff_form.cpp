// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/tiff_form.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>
#include <limits>
#include <string_view>

namespace umbrixlib::toolkit {

namespace {

constexpr unsigned kMostChannels = 64;

/// No data of this compression hold more than this times their length; infinity if that is not known.
double most_packing(std::uint16_t compression)
{
    switch (compression) {
    case COMPRESSION_NONE:
        return 1.0;
    case COMPRESSION_PACKBITS:
        return 64.0;
    case COMPRESSION_DEFLATE:
    case COMPRESSION_ADOBE_DEFLATE:
        return 1040.0;
    default:
        return std::numeric_limits<double>::infinity();
    }
}

std::string name_of_compression(std::uint16_t compression)
{
    switch (compression) {
    case COMPRESSION_JBIG:
    case COMPRESSION_T85:
    case COMPRESSION_T43:
        return "JBIG";
    case COMPRESSION_CCITTRLEW:
        return "CCITT RLE/W";
    case COMPRESSION_JP2000:
        return "JPEG 2000";
    case COMPRESSION_JXL:
        return "JPEG XL";
    default:
        return fmt::format("method {}", compression);
    }
}

std::string name_of_colours(std::uint16_t photometric)
{
    switch (photometric) {
    case PHOTOMETRIC_CIELAB:
    case PHOTOMETRIC_ICCLAB:
    case PHOTOMETRIC_ITULAB:
        return "Lab";
    case PHOTOMETRIC_LOGL:
    case PHOTOMETRIC_LOGLUV:
        return "LogLuv";
    case PHOTOMETRIC_CFA:
        return "camera raw";
    default:
        return fmt::format("photometric {}", photometric);
    }
}

/// Reads the tags of the first picture of a file.
class TagReader {
public:
    TagReader(SourceFile& source, TiffFile& file) : source_(source), file_(file) {}

    TiffForm read()
    {
        read_size();
        read_form();
        read_rest();
        return std::move(form_);
    }

private:
    [[noreturn]] void refuse(std::string const& kind, char const* remedy) const
    {
        source_.refuse(fmt::format("it is a TIFF picture {}", kind), remedy);
    }

    void read_size()
    {
        form_.width = file_.number<std::uint32_t>(TIFFTAG_IMAGEWIDTH, 0);
        form_.height = file_.number<std::uint32_t>(TIFFTAG_IMAGELENGTH, 0);
        file_.check(form_.width > 0 && form_.height > 0);
        source_.check_size(form_.width, form_.height);
    }

    void read_form()
    {
        form_.compression = file_.defaulted(TIFFTAG_COMPRESSION);
        // libtiff takes the bytes that fill rows up to words for codes.
        bool const is_broken = form_.compression == COMPRESSION_CCITTRLEW;
        if (is_broken || TIFFIsCODECConfigured(form_.compression) == 0) {
            refuse(fmt::format("compressed with {}", name_of_compression(form_.compression)),
                   "save it with Deflate or without compression");
        }
        form_.samples_per_texel = file_.defaulted(TIFFTAG_SAMPLESPERPIXEL);
        form_.planar =
            file_.defaulted(TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE && form_.samples_per_texel > 1;
        bool const grey = form_.samples_per_texel < 3;
        std::uint16_t const usual = grey ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB;
        form_.photometric = file_.number<std::uint16_t>(TIFFTAG_PHOTOMETRIC, usual);
        if (has_logarithms()) {
            TIFFSetField(file_.get(), TIFFTAG_SGILOGDATAFMT, SGILOGDATAFMT_FLOAT);
        }
        form_.samples.bits = file_.defaulted(TIFFTAG_BITSPERSAMPLE);
        if (form_.photometric == PHOTOMETRIC_YCBCR || form_.compression == COMPRESSION_OJPEG) {
            choose_way_to_rgb();
        }
        if (form_.by_rgba) {
            return;
        }
        choose_numbers();
        choose_channels();
        std::uint64_t const row = bytes_of_row(form_.width, form_.samples_per_texel, form_.samples.bits);
        source_.check_length(static_cast<double>(row) * form_.height / most_packing(form_.compression));
    }

    /// libtiff makes floats of them.
    bool has_logarithms() const
    {
        return form_.compression == COMPRESSION_SGILOG || form_.compression == COMPRESSION_SGILOG24;
    }

    /// Luminance and colour differences become red, green and blue in the decoder of JPEG, or in libtiff's
    /// reader of all pictures that have 8 bits.
    void choose_way_to_rgb()
    {
        if (form_.samples.bits != 8) {
            refuse(fmt::format("of YCbCr colours with {} bits", form_.samples.bits), "save it as RGB");
        }
        if (form_.compression == COMPRESSION_JPEG && !form_.planar) {
            TIFFSetField(file_.get(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
            form_.photometric = PHOTOMETRIC_RGB;
        } else {
            form_.by_rgba = true;
        }
    }

    void choose_numbers()
    {
        switch (file_.defaulted(TIFFTAG_SAMPLEFORMAT)) {
        case SAMPLEFORMAT_UINT:
        case SAMPLEFORMAT_VOID:
            break;
        case SAMPLEFORMAT_INT:
            form_.samples.numbers = TiffNumbers::kSigned;
            break;
        case SAMPLEFORMAT_IEEEFP:
            form_.samples.numbers = TiffNumbers::kFloat;
            break;
        default:
            refuse("of complex numbers", "save it with real ones");
        }
        unsigned const bits = form_.samples.bits;
        bool const floats = form_.samples.numbers == TiffNumbers::kFloat;
        bool const known =
            floats ? bits == 16 || bits == 24 || bits == 32 || bits == 64 : bits >= 1 && bits <= 32;
        if (!known) {
            refuse(fmt::format("of {} with {} bits", floats ? "floats" : "whole numbers", bits),
                   "save it with 8, 16 or 32");
        }
        bool const jpeg = form_.compression == COMPRESSION_JPEG || form_.compression == COMPRESSION_WEBP;
        if (jpeg && (bits != 8 || floats)) {
            refuse(fmt::format("compressed with JPEG in {} bits", bits),
                   "save it with 8 bits or with Deflate");
        }
    }

    /// Which samples of a texel are taken, and what they are.
    void choose_channels()
    {
        if (form_.samples_per_texel < 1 || form_.samples_per_texel > kMostChannels) {
            refuse(fmt::format("of {} channels", form_.samples_per_texel), "save it with at most four");
        }
        unsigned colours = 1;
        switch (form_.photometric) {
        case PHOTOMETRIC_MINISWHITE:
            form_.samples.white_is_zero = true;
            check_that_numbers_are_whole("with white at 0");
            break;
        case PHOTOMETRIC_MINISBLACK:
        case PHOTOMETRIC_MASK:
            break;
        case PHOTOMETRIC_PALETTE:
            form_.samples.indexes = true;
            check_that_numbers_are_whole("with a palette");
            break;
        case PHOTOMETRIC_RGB:
            colours = 3;
            break;
        case PHOTOMETRIC_SEPARATED:
            colours = 4;
            check_that_numbers_are_whole("of inks");
            if (file_.defaulted(TIFFTAG_INKSET) != INKSET_CMYK || form_.samples.bits > 16) {
                refuse("of inks that are not CMYK of 8 or 16 bits", "save it as RGB");
            }
            form_.notes.emplace_back("its CMYK inks became RGB without their colour profile");
            break;
        case PHOTOMETRIC_LOGL:
        case PHOTOMETRIC_LOGLUV:
            if (has_logarithms()) {
                form_.is_xyz = form_.photometric == PHOTOMETRIC_LOGLUV;
                colours = form_.is_xyz ? 3 : 1;
                break;
            }
            [[fallthrough]];
        default:
            refuse(fmt::format("of {} colours", name_of_colours(form_.photometric)), "save it as RGB");
        }
        if (form_.is_xyz) {
            form_.notes.emplace_back("its LogLuv colours became linear RGB");
        }
        if (form_.samples_per_texel < colours) {
            source_.refuse_as_damaged();
        }
        choose_alpha(colours);
    }

    void check_that_numbers_are_whole(char const* kind) const
    {
        if (form_.samples.numbers != TiffNumbers::kUnsigned ||
            (form_.samples.indexes && form_.samples.bits > 16)) {
            refuse(
                fmt::format("{} and samples of {} bits that are no numbers of it", kind, form_.samples.bits),
                "save it as grey or RGB");
        }
    }

    void choose_alpha(unsigned colours)
    {
        std::uint16_t extras = 0;
        std::uint16_t const* kinds = nullptr;
        if (TIFFGetField(file_.get(), TIFFTAG_EXTRASAMPLES, &extras, &kinds) == 0) {
            extras = 0;
        }
        extras = static_cast<std::uint16_t>(std::min<unsigned>(extras, form_.samples_per_texel - colours));
        unsigned const first_known = form_.samples_per_texel - extras;
        auto const of_kind = [&](std::uint16_t kind) {
            return static_cast<unsigned>(std::find(kinds, kinds + extras, kind) - kinds);
        };
        unsigned const straight = of_kind(EXTRASAMPLE_UNASSALPHA);
        unsigned const multiplied = of_kind(EXTRASAMPLE_ASSOCALPHA);
        bool const named = straight < extras || multiplied < extras;
        bool const just_black_at_zero =
            colours == 1 && !form_.samples.indexes && !form_.samples.white_is_zero;
        if (just_black_at_zero && form_.samples_per_texel >= 3 && !named) {
            colours = 3; // as programs write whose pictures are arrays
            form_.notes.emplace_back(
                "its channels have no names: the first three are taken as red, green and blue");
        }
        for (unsigned i = 0; i < colours; ++i) {
            form_.taken.push_back(i);
        }
        unsigned left = form_.samples_per_texel - colours;
        if (left > 0 && !form_.samples.indexes) {
            if (form_.samples.white_is_zero) {
                refuse("with white at 0 and an alpha", "save it with black at 0");
            }
            // What has no name counts as an alpha that does not change the colours.
            form_.taken.push_back(straight < extras     ? first_known + straight
                                  : multiplied < extras ? first_known + multiplied
                                                        : colours);
            --left;
            form_.divide_by_alpha = straight == extras && multiplied < extras && !is_marked_wrong();
        }
        if (form_.divide_by_alpha) {
            form_.notes.emplace_back("its colours were multiplied with its alpha, and are divided by it");
        }
        if (left > 0) {
            form_.notes.push_back(
                fmt::format("{} of its {} channels are left out", left, form_.samples_per_texel));
        }
    }

    /// DevIL says of every alpha that it is multiplied, and multiplies nothing.
    bool is_marked_wrong() const
    {
        char const* const software = file_.number<char const*>(TIFFTAG_SOFTWARE, nullptr);
        return software != nullptr && std::string_view(software).starts_with("Developer's Image Library");
    }

    void read_rest()
    {
        form_.orientation = file_.defaulted(TIFFTAG_ORIENTATION);
        if (form_.orientation >= 2 && form_.orientation <= 8) {
            form_.notes.emplace_back("turned upright, as its orientation tag says");
        }
        std::uint32_t size = 0;
        void const* profile = nullptr;
        if (TIFFGetField(file_.get(), TIFFTAG_ICCPROFILE, &size, &profile) != 0) {
            form_.notes.emplace_back("its colour profile is left alone: values count as they are");
        }
        if (char const* const text = file_.number<char const*>(TIFFTAG_IMAGEDESCRIPTION, nullptr)) {
            form_.attributes = parse_attributes({text, strnlen(text, kMostAttributeText + 1)});
        }
        if (TIFFLastDirectory(file_.get()) == 0) {
            form_.notes.emplace_back("it has several pictures, of which this is the first");
        }
    }

    SourceFile& source_;
    TiffFile& file_;
    TiffForm form_;
};

} // namespace

TiffForm read_form(SourceFile& source, TiffFile& file)
{
    return TagReader(source, file).read();
}

} // namespace umbrixlib::toolkit
