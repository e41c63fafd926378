// SPDX-License-Identifier: MIT
#include "work/decoded_sources.h"

#include "temporary_folder.h"
#include "toolkit/base/failure.h"
#include "toolkit/tasks/decode/decoded_samples.h"
#include "work_pictures.h"

#include <fstream>
#include <gtest/gtest.h>

namespace umbrix_desktop {
namespace {

using umbrixlib::test::TemporaryFolder;

TEST(DesktopSources, AreWhatTheDecoderReads)
{
    TemporaryFolder const folder;
    toolkit::Observer nobody;
    toolkit::NeverStop const never;
    for (int const channels : {1, 2, 3, 4}) {
        for (char const* const name : {"a.png", "a.tiff", "a.exr"}) {
            auto const file = folder / name;
            toolkit::Picture picture = test::hills(37, 21, channels);
            picture.attributes = {{"umbrix", "1"}, {"kind", "heights"}};
            if (file.extension() == ".exr") {
                picture = toolkit::in_floats(picture);
            }
            test::save(picture, file);
            Decoded const decoded = DecodedSources().get(file.string(), nobody, never);
            toolkit::DecodedImage const expected(file, file.string(), 1e9);
            EXPECT_EQ(decoded->picture().bytes, expected.picture().bytes) << file << channels;
            EXPECT_EQ(decoded->picture().type, expected.picture().type);
            EXPECT_EQ(decoded->picture().channels, expected.picture().channels);
            EXPECT_EQ(decoded->picture().kind, expected.picture().kind);
            EXPECT_EQ(decoded->picture().attributes, expected.picture().attributes);
            EXPECT_EQ(decoded->description(), expected.description());
            EXPECT_EQ(decoded->format(), expected.format());
            EXPECT_EQ(decoded->notes(), expected.notes());
        }
    }
}

TEST(DesktopSources, AreDecodedOnce)
{
    TemporaryFolder const folder;
    toolkit::Observer nobody;
    toolkit::NeverStop const never;
    std::string const one = (folder / "a.png").string();
    std::string const other = (folder / "b.png").string();
    test::save(test::hills(8, 8), one);
    test::save(test::hills(9, 9), other);
    DecodedSources sources;
    Decoded const first = sources.get(one, nobody, never);
    Decoded const second = sources.get(other, nobody, never);
    EXPECT_EQ(sources.get(one, nobody, never), first);
    sources.keep(other, "");
    EXPECT_EQ(sources.get(other, nobody, never), second);
    EXPECT_NE(sources.get(one, nobody, never), first);
    sources.forget();
    EXPECT_NE(sources.get(other, nobody, never), second);
}

TEST(DesktopSources, AreRefusedWithAReason)
{
    TemporaryFolder const folder;
    toolkit::Observer nobody;
    toolkit::NeverStop const never;
    EXPECT_THROW(DecodedSources().get((folder / "none.png").string(), nobody, never), toolkit::Failure);
    std::ofstream(folder / "bad.png") << "\x89PNG\r\n\x1a\n and no more";
    EXPECT_THROW(DecodedSources().get((folder / "bad.png").string(), nobody, never), toolkit::Failure);
}

TEST(DesktopSources, AreNotTakenFromADecoderGoneWild)
{
    TemporaryFolder const folder;
    std::string const samples = (folder / "samples").string();
    std::ofstream(samples) << "twelve bytes";
    toolkit::DecodeJob const job{{"a.png", {samples, "a.png"}, 1000}};
    toolkit::DecodeReport good;
    good.width = 2;
    good.height = 2;
    good.channels = 3;
    EXPECT_EQ(decoded_samples(job, good).picture().bytes.size(), 12U);
    auto const refuses = [&](auto change) {
        toolkit::DecodeReport report = good;
        change(report);
        EXPECT_THROW(decoded_samples(job, report), toolkit::Failure);
    };
    refuses([](auto& report) { report.width = 1; });
    refuses([](auto& report) { report.width = 3; });
    refuses([](auto& report) { report.width = -2; });
    refuses([](auto& report) { report.height = 65536; });
    refuses([](auto& report) { report.channels = 0; });
    refuses([](auto& report) { report.channels = 5; });
    refuses([](auto& report) { report.type = static_cast<umbrixlib::SampleType>(9); });
    refuses([](auto& report) { report.picture_kind = static_cast<toolkit::PictureKind>(-1); });
    refuses([](auto& report) { report.width = report.height = 60000; });
}

} // namespace
} // namespace umbrix_desktop
