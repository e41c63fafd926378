// SPDX-License-Identifier: MIT
#include "toolkit/pictures/naming.h"

#include <gtest/gtest.h>

namespace umbrixlib::test {
namespace {

using toolkit::default_output;
using toolkit::hint_of_name;
using toolkit::Kind;

TEST(Naming, PutsTheSuffixBesideTheInput)
{
    EXPECT_EQ(default_output("a/brick.png", "_Umbrix"), "a/brick_Umbrix.png");
    EXPECT_EQ(default_output("brick.TGA", "_N"), "brick_N.TGA");
    EXPECT_EQ(default_output("brick", "_Umbrix"), "brick_Umbrix.png");
    EXPECT_EQ(default_output("a.b/brick.v2.tga", "_Umbrix"), "a.b/brick.v2_Umbrix.tga");
}

TEST(Naming, LetsATagGiveWayToTheSuffix)
{
    EXPECT_EQ(default_output("brick_N.png", "_Umbrix"), "brick_Umbrix.png");
    EXPECT_EQ(default_output("brick_NORMAL.png", "_Umbrix"), "brick_Umbrix.png");
    EXPECT_EQ(default_output("brick_h.png", "_Umbrix"), "brick_Umbrix.png");
    EXPECT_EQ(default_output("brick_height.png", "_Umbrix"), "brick_Umbrix.png");
    EXPECT_EQ(default_output("_n.png", "_Umbrix"), "_n_Umbrix.png"); // nothing would be left
    EXPECT_EQ(default_output("brick_n_h.png", "_Umbrix"), "brick_n_Umbrix.png");
}

TEST(Naming, TakesPngWhereTheFormatOfTheInputWouldLoseSomething)
{
    EXPECT_EQ(default_output("brick.jpg", "_Umbrix"), "brick_Umbrix.png");
    EXPECT_EQ(default_output("brick.vtf", "_Umbrix"), "brick_Umbrix.png"); // sides of powers of two
    EXPECT_EQ(default_output("brick.gif", "_Umbrix"), "brick_Umbrix.png"); // is not written at all
    EXPECT_EQ(default_output("brick.bmp", "_Umbrix"), "brick_Umbrix.bmp");
    EXPECT_EQ(default_output("land.r16", "_Umbrix"), "land_Umbrix.png"); // holds heights alone
}

TEST(Naming, TakesTheExtensionThatIsAskedFor)
{
    EXPECT_EQ(default_output("a/brick_H.tga", "_N", ".png"), "a/brick_N.png");
    EXPECT_EQ(default_output("land.r16", "_N", ".exr"), "land_N.exr");
}

TEST(Naming, PutsTheSuffixOfAPackedPictureInThePlaceOfTheEnding)
{
    EXPECT_EQ(toolkit::packed_output("a/brick_AO.tga", "_ORM", ".png"), "a/brick_ORM.png");
    EXPECT_EQ(toolkit::packed_output("brick_roughness_2k.png", "_orm", ".tif"), "brick_2k_orm.tif");
    EXPECT_EQ(toolkit::packed_output("brick.png", "_ORM", ".png"), "brick_ORM.png");
}

void expect_hint(char const* name, Kind kind, char const* word)
{
    auto const hint = hint_of_name(name);
    ASSERT_TRUE(hint) << name;
    EXPECT_EQ(hint->kind, kind) << name;
    EXPECT_EQ(hint->word, word) << name;
}

TEST(Naming, TellsTheKindByAWord)
{
    expect_hint("brick_normal.png", Kind::kNormalMap, "normal");
    expect_hint("a/NormalMap-brick.tga", Kind::kNormalMap, "Normal");
    expect_hint("brickNrm2.tga", Kind::kNormalMap, "Nrm");
    expect_hint("Brick_DISP.tga", Kind::kHeightMap, "DISP");
    expect_hint("height.png", Kind::kHeightMap, "height");
    expect_hint("normals/bump.png", Kind::kHeightMap, "bump"); // the folder says nothing
}

TEST(Naming, TellsTheKindByOneLetterAtTheEndOnly)
{
    expect_hint("brick_N.png", Kind::kNormalMap, "N");
    expect_hint("brick_h.png", Kind::kHeightMap, "h");
    EXPECT_FALSE(hint_of_name("n_brick.png"));
    EXPECT_FALSE(hint_of_name("brick.png"));
    EXPECT_FALSE(hint_of_name("abnormality.png"));
}

TEST(Naming, SaysNothingWithWordsForBoth)
{
    EXPECT_FALSE(hint_of_name("height_to_normal.png"));
    EXPECT_FALSE(hint_of_name("normal_height_N.png"));
}

TEST(Naming, KnowsTheWordsOfTheUsualEndings)
{
    expect_hint("brick_NormalGL.png", Kind::kNormalMap, "Normal");
    expect_hint("brick_normaldx.png", Kind::kNormalMap, "normaldx");
    expect_hint("brick_nor_gl.png", Kind::kNormalMap, "nor");
    for (char const* word :
         {"displacement", "displace", "disp", "dsp", "height", "hgt", "h", "bump", "bmp", "depth"}) {
        expect_hint((std::string("brick_") + word + ".png").c_str(), Kind::kHeightMap, word);
    }
    EXPECT_FALSE(hint_of_name("bmp_brick.png"));
}

std::string ending_of(char const* name)
{
    auto const* const ending = toolkit::ending_of_name(name);
    if (ending == nullptr) {
        return "";
    }
    std::string text(ending->text);
    text += !ending->kind ? ": other" : *ending->kind == Kind::kHeightMap ? ": heights" : ": normals";
    return text + (!ending->green ? "" : *ending->green == toolkit::NormalY::kUp ? ", up" : ", down");
}

TEST(Naming, TellsThePicturesOfAMaterialByTheirEndings)
{
    EXPECT_EQ(ending_of("brick_Displacement.tif"), "_displacement: heights");
    EXPECT_EQ(ending_of("a/brick_H.png"), "_h: heights");
    EXPECT_EQ(ending_of("brick_Normal.png"), "_normal: normals");
    EXPECT_EQ(ending_of("brick_NormalGL.png"), "_normalgl: normals, up");
    EXPECT_EQ(ending_of("brick_NORMALDX.png"), "_normaldx: normals, down");
    EXPECT_EQ(ending_of("brick_nor_gl.exr"), "_nor_gl: normals, up");
    EXPECT_EQ(ending_of("brick_nor_dx.exr"), "_nor_dx: normals, down");
    EXPECT_EQ(ending_of("brick_AO.jpg"), "_ao: other");
    EXPECT_EQ(ending_of("brick_BaseColor.jpg"), "_basecolor: other");
    EXPECT_EQ(ending_of("brick_arm.jpg"), "_arm: other");
    EXPECT_EQ(ending_of("brick_Curvature.png"), "_curvature: other");
    for (char const* none : {"brick.png", "ao.png", "brick_ao_2.png", "brickao.png", "ao/brick.png",
                             "normal_brick.png", "brick_gl.png", ""}) {
        EXPECT_EQ(ending_of(none), "") << none;
    }
}

TEST(Naming, PassesAResolutionBehindTheEnding)
{
    EXPECT_EQ(ending_of("brick_nor_dx_4k.exr"), "_nor_dx: normals, down");
    EXPECT_EQ(ending_of("brick_diff_16K.jpg"), "_diff: other");
    for (char const* none :
         {"brick_ao_k.png", "brick_ao4k.png", "brick_ao_4.png", "_4k.png", "4k.png", "k"}) {
        EXPECT_EQ(ending_of(none), "") << none;
    }
}

} // namespace
} // namespace umbrixlib::test
