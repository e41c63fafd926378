// SPDX-License-Identifier: MIT
// The calls that HeightToNormal makes into DevIL and the texture kernels: order, arguments, identity of
// buffers.
#include "normals/height_to_normal.h"

#include "call_log.h"
#include "devil_fake.h"
#include "kernels_fake.h"
#include "picture_depths.h"

#include <gmock/gmock.h>
#include <limits>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using umbrixlib::test::CallLog;
using umbrixlib::test::DevilFake;
using umbrixlib::test::KernelsFake;

struct Parameters {
    float n_scale = 2.0f;
    float gaussian = 0.0f;
    float depth = 0.0f;
    float detail = 0.0f;
    float edge_a = 0.0f;
    float edge_b = 0.0f;
};

class HeightToNormalBuffer : public testing::Test {
protected:
    static constexpr int kHeight = 3;
    static constexpr int kWidth = 5;

    std::vector<std::string> calls(Parameters const& p)
    {
        CallLog::instance().clear();
        CallLog::instance().buffer(normals_.data()); // #1
        EXPECT_TRUE(HeightToNormal(source_.data(), normals_.data(), kHeight, kWidth, p.n_scale, p.gaussian,
                                   p.depth, true, 3, p.detail, true, p.edge_a, p.edge_b, true, &text_,
                                   &progress_));
        return CallLog::instance().calls();
    }

    std::vector<float> source_ = std::vector<float>(kHeight * kWidth, 0.25f);
    std::vector<float3> normals_ = std::vector<float3>(kHeight * kWidth);
    std::string text_ = "before";
    int progress_ = 99;
};

TEST_F(HeightToNormalBuffer, TablesAreMadeWithoutAFilterToo)
{
    EXPECT_THAT(calls({.detail = 1.0f}),
                ElementsAre("GenerateExp(1, #2)", "GenerateExp(128, #3)", "Height2Normal(#4, #1, 3, 5)"));
    EXPECT_EQ(normals_[7].z, 0.5f) << "the scaled height, unfiltered";
}

TEST_F(HeightToNormalBuffer, FilterReadsOneBufferAndTheRestTakesTheOther)
{
    EXPECT_THAT(calls({.detail = 1.5f}),
                ElementsAre("GenerateExp(1.5, #2)", "GenerateExp(128, #3)",
                            "BilateralFilter(#4, #5, 3, 5, 1.5, #2, #3)", "Height2Normal(#5, #1, 3, 5)"));
    EXPECT_EQ(normals_[7].z, (0.25f + KernelsFake::kFiltered) * 2.0f) << "filtered, then scaled";
}

TEST_F(HeightToNormalBuffer, DepthAndEdgesSeeTheScaledImage)
{
    EXPECT_THAT(calls({.depth = -0.5f, .edge_a = 0.25f, .edge_b = 0.75f}),
                ElementsAre("GenerateExp(0, #2)", "GenerateExp(128, #3)", "ChangeDepth(#4, 3, 5, -0.5, 2)",
                            "Height2Normal(#4, #1, 3, 5)", "NormalEdges(#1, #4, 3, 5, 0.25, 0.75)"));
}

TEST_F(HeightToNormalBuffer, ADepthOfMinusZeroMeansNoCallAndNaNMeansOne)
{
    EXPECT_EQ(calls({.depth = -0.0f}).size(), 3U);
    EXPECT_THAT(calls({.depth = std::numeric_limits<float>::quiet_NaN()}),
                testing::Contains(testing::StartsWith("ChangeDepth")));
}

TEST_F(HeightToNormalBuffer, EdgesNeedBothStrengths)
{
    EXPECT_EQ(calls({.edge_a = 1.0f}).size(), 3U);
    EXPECT_EQ(calls({.edge_b = 1.0f}).size(), 3U);
    EXPECT_EQ(calls({.edge_a = 1.0f, .edge_b = 1.0f}).size(), 4U);
}

TEST_F(HeightToNormalBuffer, SetsTheProgressPairAndLeavesTheSourceAlone)
{
    calls({.gaussian = 1.0f, .detail = 2.0f});
    EXPECT_EQ(text_, "Generating Normal");
    EXPECT_EQ(progress_, 0);
    EXPECT_EQ(source_, std::vector<float>(kHeight * kWidth, 0.25f));
}

TEST_F(HeightToNormalBuffer, ANegativeRadiusStillHasATableOfOneFloat)
{
    EXPECT_THAT(calls({.detail = -7.0f}).front(), "GenerateExp(-7, #2)");
}

TEST_F(HeightToNormalBuffer, AnEmptyImageMakesTheSameCalls)
{
    for (auto const& [height, width] : {std::pair{0, 0}, {0, 5}, {5, 0}}) {
        CallLog::instance().clear();
        EXPECT_TRUE(HeightToNormal(nullptr, nullptr, height, width, 1.0f, 1.0f, 0.0f, false, 0, 0.0f, false,
                                   0.0f, 0.0f, false, &text_, &progress_));
        EXPECT_EQ(CallLog::instance().calls().size(), 3U);
    }
}

class HeightToNormalFile : public testing::Test {
protected:
    std::vector<std::string> calls(float gaussian, float detail)
    {
        CallLog::instance().clear();
        EXPECT_TRUE(HeightToNormal("in.png", "out.tga", 1.5f, gaussian, false, 0, detail, false, false,
                                   &text_, &progress_));
        return CallLog::instance().calls();
    }

    static std::vector<std::string> with_frame(std::vector<std::string> const& kernels,
                                               std::string const& bytes)
    {
        std::vector<std::string> expected = {"ilInit()",
                                             "ilEnable(0x0620)",
                                             "ilEnable(0x0600)",
                                             "ilSetInteger(0x0600, 0x0602)",
                                             "ilLoadImage(in.png)",
                                             "ilGetInteger(0x0DE4)",
                                             "ilGetInteger(0x0DE5)",
                                             "ilCopyPixels(4x2, 0x1907, 0x1401, " + bytes + ")"};
        expected.insert(expected.end(), kernels.begin(), kernels.end());
        expected.push_back("ilSetPixels(4x2, 0x1907, 0x1401, " + bytes + ")");
        expected.emplace_back("ilSaveImage(out.tga)");
        return expected;
    }

    void SetUp() override { DevilFake::instance().serve(4, 2, 32); }

    std::string text_;
    int progress_ = 99;
};

TEST_F(HeightToNormalFile, LoadsConvertsRefillsAndSaves)
{
    EXPECT_THAT(calls(0.0f, 1.0f), ElementsAreArray(with_frame({"Height2Normal3(#2, 2, 4, 1.5)"}, "#1")));
    EXPECT_EQ(text_, "Generating Normal");
    EXPECT_EQ(progress_, 0);
}

TEST_F(HeightToNormalFile, TheBilateralResultIsDropped)
{
    EXPECT_THAT(calls(0.0f, 2.5f),
                ElementsAreArray(with_frame({"GenerateExp(2.5, #2)", "GenerateExp(128, #3)",
                                             "BilateralFilter3(#4, #5, 2, 4, 2.5, #2, #3)",
                                             "Height2Normal3(#4, 2, 4, 1.5)"},
                                            "#1")));
    auto const filtered = DevilFake::instance().stored;
    DevilFake::instance().serve(4, 2, 32);
    calls(0.0f, 0.0f);
    EXPECT_EQ(filtered, DevilFake::instance().stored);
}

TEST_F(HeightToNormalFile, BytesAreTruncatedWithoutAClamp)
{
    calls(0.0f, 0.0f);
    DevilFake const& fake = DevilFake::instance();
    ASSERT_EQ(fake.stored.size(), 24U);
    for (std::size_t i = 0; i < fake.stored.size(); ++i) {
        float const component = static_cast<float>(fake.served[i] / 255.0);
        EXPECT_EQ(fake.stored[i], static_cast<unsigned char>((double(component) + 1.0) * 255.0 * 0.5));
    }
}

class HeightToNormalDepths : public HeightToNormalFile, public testing::WithParamInterface<int> {};
INSTANTIATE_TEST_SUITE_P(BytesPerPixel, HeightToNormalDepths, testing::ValuesIn(umbrixlib::test::kDepths));

TEST_P(HeightToNormalDepths, TexelsAreThreeBytesOfEveryPicture)
{
    DevilFake& fake = DevilFake::instance();
    for (auto const& size : umbrixlib::test::kPictureSizes) {
        fake.serve(size.width, size.height, 8 * GetParam());
        calls(0.0f, 2.5f);
        std::vector<unsigned char> expected(
            fake.served.begin(), fake.served.begin() + static_cast<std::ptrdiff_t>(3 * size.texels()));
        for (unsigned char& byte : expected) {
            byte = static_cast<unsigned char>((double(float(byte / 255.0)) + 1.0) * 255.0 * 0.5);
        }
        EXPECT_EQ(fake.stored, expected) << size.width << " x " << size.height;
        calls(2.0f, 0.0f);
        EXPECT_EQ(fake.stored.size(), expected.size()) << "blurred";
    }
}

TEST_F(HeightToNormalFile, AFailedLoadAndAFailedSaveStillGiveTrue)
{
    DevilFake::instance().load_result = 0;
    DevilFake::instance().save_result = 0;
    EXPECT_THAT(calls(0.0f, 0.0f), testing::Contains("ilSaveImage(out.tga)"));
}

} // namespace
