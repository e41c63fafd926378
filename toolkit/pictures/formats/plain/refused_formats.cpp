// SPDX-License-Identifier: MIT
#include "toolkit/base/text.h"
#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/formats/plain/byte_reader.h"

#include <algorithm>
#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

using namespace std::string_view_literals;

constexpr char const* kPicture = "save it as PNG, TIFF or EXR";
constexpr char const* kDrawing = "draw it as PNG first";

struct Signature {
    std::size_t at;
    std::string_view bytes;
    char const* what;
    char const* remedy = kPicture;
};

constexpr Signature kSignatures[] = {
    {0, "\0\0\0\x0cjP  "sv, "a JPEG 2000 picture"},
    {0, "\xff\x4f\xff\x51"sv, "a JPEG 2000 picture"},
    {0, "\0\0\0\x0cJXL "sv, "a JPEG XL picture"},
    {0, "\xff\x0a"sv, "a JPEG XL picture"},
    {0, "II\xbc\x01"sv, "a JPEG XR picture"},
    {4, "ftypavi"sv, "an AVIF picture"},
    {4, "ftyphe"sv, "an HEIF picture"},
    {4, "ftypmif1"sv, "an HEIF picture"},
    {4, "ftypmsf1"sv, "an HEIF picture"},
    {4, "ftyp"sv, "a film, not a picture"},
    {0, "\xabKTX 11\xbb"sv, "a KTX texture"},
    {0, "\xabKTX 20\xbb"sv, "a KTX2 texture"},
    {0, "SDPX"sv, "a DPX picture"},
    {0, "XPDS"sv, "a DPX picture"},
    {0, "/* XPM */"sv, "an XPM picture"},
    {0, "! XPM2"sv, "an XPM picture"},
    {0, "PCD_OPA"sv, "a Kodak Photo CD picture"},
    {0, "FOR4"sv, "a Maya IFF picture"},
    {0, "FORM"sv, "an IFF picture"},
    {0, "gimp xcf"sv, "a GIMP picture with layers"},
    {0, "\x8aMNG"sv, "an MNG animation"},
    {0, "\x8bJNG"sv, "a JNG picture"},
    {0, "qoif"sv, "a QOI picture"},
    {0, "farbfeld"sv, "a farbfeld picture"},
    {0, "BPG\xfb"sv, "a BPG picture"},
    {0, "FLIF"sv, "a FLIF picture"},
    {0, "icns"sv, "an Apple icon"},
    {0, "Paint Shop Pro Image File"sv, "a Paint Shop Pro picture"},
    {0, "BLP1"sv, "a BLP texture"},
    {0, "BLP2"sv, "a BLP texture"},
    {0, "IWi"sv, "an IWI texture"},
    {0, "PVR\x03"sv, "a PVR texture"},
    {0, "\x13\xab\xa1\x5c"sv, "an ASTC texture"},
    {0, "PK\x03\x04"sv, "an archive, not a picture"},
    {0, "\x1f\x8b"sv, "a compressed file (gzip)", "unpack it first"},
    {0, "%PDF"sv, "a PDF document", kDrawing},
    {0, "%!PS"sv, "a PostScript drawing", kDrawing},
    {0, "<svg"sv, "an SVG drawing", kDrawing},
};

/// Without a signature where it could be seen.
constexpr Signature kNames[] = {
    {0, ".pcd"sv, "a Kodak Photo CD picture"}, {0, ".dcm"sv, "a DICOM picture"},
    {0, ".cut"sv, "a Dr. Halo picture"},       {0, ".lif"sv, "a Homeworld texture"},
    {0, ".pxr"sv, "a Pixar picture"},          {0, ".wal"sv, "a Quake 2 texture"},
    {0, ".wbmp"sv, "a WBMP picture"},          {0, ".svg"sv, "an SVG drawing", kDrawing},
};

Signature const* signature_of(SourceFile const& source)
{
    auto const* const by_bytes =
        std::find_if(std::begin(kSignatures), std::end(kSignatures), [&](Signature const& signature) {
            return source.begins_with(signature.bytes, signature.at);
        });
    if (by_bytes != std::end(kSignatures)) {
        return by_bytes;
    }
    std::string const extension = lower_case(source.path().extension().string());
    auto const* const by_name = std::find_if(std::begin(kNames), std::end(kNames),
                                             [&](Signature const& name) { return name.bytes == extension; });
    return by_name == std::end(kNames) ? nullptr : by_name;
}

/// Formats that no decoder takes, each refused by its name.
class RefusedFormats : public Decoder {
public:
    bool takes(SourceFile const& source) const override { return signature_of(source) != nullptr; }

    DecodedFile decode(SourceFile& source) const override
    {
        Signature const& signature = *signature_of(source);
        source.refuse(fmt::format("it is {}", signature.what), signature.remedy);
    }
};

} // namespace

Decoder const& refused_formats()
{
    static RefusedFormats const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
