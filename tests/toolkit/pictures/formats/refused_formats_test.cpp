// SPDX-License-Identifier: MIT
/// Files of formats that no decoder takes.
#include "files/file_builder.h"

namespace umbrixlib::test {
namespace {

using namespace std::string_view_literals;

using RefusedFormats = Decoding;

TEST_F(RefusedFormats, AreNamed)
{
    std::pair<std::string_view, char const*> const cases[] = {
        {"\0\0\0\x0cjP  \r\n\x87\n"sv, "it is a JPEG 2000 picture"},
        {"\xff\x4f\xff\x51\0"sv, "it is a JPEG 2000 picture"},
        {"\0\0\0\x0cJXL \r\n\x87\n"sv, "it is a JPEG XL picture"},
        {"\xff\x0a\0\0"sv, "it is a JPEG XL picture"},
        {"\0\0\0\x18"
         "ftypheic"sv,
         "it is an HEIF picture"},
        {"\0\0\0\x18"
         "ftypmif1"sv,
         "it is an HEIF picture"},
        {"\0\0\0\x1c"
         "ftypavif"sv,
         "it is an AVIF picture"},
        {"\0\0\0\x1c"
         "ftypisom"sv,
         "it is a film, not a picture"},
        {"\xabKTX 11\xbb\r\n"sv, "it is a KTX texture"},
        {"\xabKTX 20\xbb\r\n"sv, "it is a KTX2 texture"},
        {"SDPX"sv, "it is a DPX picture"},
        {"XPDS"sv, "it is a DPX picture"},
        {"/* XPM */\nstatic"sv, "it is an XPM picture"},
        {"<svg xmlns="sv, "it is an SVG drawing"},
        {"%PDF-1.4"sv, "it is a PDF document"},
        {"qoif"sv, "it is a QOI picture"},
        {"PVR\x03"sv, "it is a PVR texture"},
        {"\x13\xab\xa1\x5c"sv, "it is an ASTC texture"},
        {"PK\x03\x04"sv, "it is an archive, not a picture"},
        {"FOR4"sv, "it is a Maya IFF picture"},
    };
    for (auto const& [bytes, wanted] : cases) {
        for (char const* const name : {"x", "x.bin"}) {
            EXPECT_EQ(complaint(FileBuilder().text(bytes).zeros(40), name), wanted);
        }
    }
    EXPECT_EQ(complaint(Bytes(4096, 255), "x.PCD"), "it is a Kodak Photo CD picture");
    EXPECT_EQ(complaint(FileBuilder().text("<?xml version=\"1.0\"?>"), "x.svg"), "it is an SVG drawing");
    EXPECT_EQ(complaint(Bytes(64, 1), "x.dcm"), "it is a DICOM picture");
}

TEST_F(RefusedFormats, DoNotHideOthers)
{
    EXPECT_EQ(decoded(FileBuilder().text("P5 1 1 255 a"), "x.pcd").width(), 1)
        << "a PGM file of another name";
}

} // namespace
} // namespace umbrixlib::test
