// SPDX-License-Identifier: MIT
/// What a fix is exact for is sound in the mended copy, and the rest stays as it was.
#include "corpus.h"
#include "temporary_folder.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

class MendedMaps : public testing::Test {
protected:
    std::string path(std::string const& name) const { return (folder_.path() / name).string(); }

    CheckReport mend(Picture const& spoilt) const
    {
        write_png(spoilt, path("spoilt.png"));
        return check_of(path("spoilt.png"), PictureKind::kNormals, [&](CheckJob& job) {
            job.files.output = {path("mended.png"), "mended.png"};
        });
    }

    TemporaryFolder folder_;
};

constexpr char const* kMended[] = {"normal-length", "blue-constant", "flat-value", "green-direction"};

TEST_F(MendedMaps, AreWithoutWhatWasMended)
{
    std::size_t mended = 0;
    for (MapFault const& fault : map_faults()) {
        for (std::string const& file : shipped_maps("normal")) {
            bool const can_be_mended = std::ranges::count(kMended, fault.finding) > 0;
            if (fault.kind != PictureKind::kNormals || !can_be_mended) {
                continue;
            }
            for (double const strength : fault.strengths) {
                CheckReport const report = mend(fault.spoil(corpus_picture(file), strength));
                auto const found = std::ranges::find(report.findings, fault.finding, &Finding::name);
                ASSERT_NE(found, report.findings.end()) << fault.name << ' ' << file;
                EXPECT_NE(found->fix, "");
                EXPECT_EQ(std::ranges::count(report.mended, fault.finding), 1);
                Findings const left = check_of(path("mended.png"), PictureKind::kNormals).findings;
                for (std::string const& name : report.mended) {
                    EXPECT_EQ(std::ranges::find(left, name, &Finding::name), left.end())
                        << fault.name << ' ' << strength << ' ' << file << ' ' << name;
                    ++mended;
                }
            }
        }
    }
    EXPECT_GE(mended, 6U * 3 * 4); // each strength of six faults in each map
}

TEST_F(MendedMaps, KeepAllOtherTexels)
{
    Picture const sound = corpus_picture(shipped_maps("normal")[2]);
    auto const fault = std::ranges::find(map_faults(), std::string("some shortened"), &MapFault::name);
    Picture const spoilt = fault->spoil(sound, 0.02);
    ASSERT_EQ(mend(spoilt).mended, std::vector<std::string>{"normal-length"});
    Picture const mended = corpus_picture(path("mended.png"));
    std::size_t same = 0;
    int farthest = 0;
    for (std::size_t i = 0; i < sound.texels(); ++i) {
        bool const was_sound = std::equal(sound.texel(i), sound.texel(i) + 3, spoilt.texel(i));
        same += was_sound && std::equal(sound.texel(i), sound.texel(i) + 3, mended.texel(i)) ? 1 : 0;
        for (std::size_t c = 0; c < 3; ++c) {
            farthest = std::max(farthest, std::abs(sound.texel(i)[c] - mended.texel(i)[c]));
        }
    }
    EXPECT_GT(static_cast<double>(same), 0.97 * static_cast<double>(sound.texels()));
    EXPECT_LE(farthest, 2); // the bytes of a shorter normal are coarser
}

TEST_F(MendedMaps, HaveTheirGreenBackToTheByte)
{
    for (std::string const& file : shipped_maps("normal")) {
        Picture const sound = corpus_picture(file);
        Picture turned = sound;
        for (std::size_t i = 0; i < turned.texels(); ++i) {
            turned.texel(i)[1] = static_cast<std::uint8_t>(255 - turned.texel(i)[1]);
        }
        ASSERT_EQ(mend(turned).mended, std::vector<std::string>{"green-direction"}) << file;
        EXPECT_EQ(corpus_picture(path("mended.png")).bytes, sound.bytes) << file;
    }
}

TEST_F(MendedMaps, AreNotWrittenForSoundOnes)
{
    EXPECT_TRUE(mend(corpus_picture(shipped_maps("normal")[0])).mended.empty());
    EXPECT_FALSE(std::filesystem::exists(path("mended.png")));
}

} // namespace
} // namespace umbrixlib::test
