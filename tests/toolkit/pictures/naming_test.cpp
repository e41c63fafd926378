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

} // namespace
} // namespace umbrixlib::test
