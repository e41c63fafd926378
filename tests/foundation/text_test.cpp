// SPDX-License-Identifier: MIT
#include "foundation/text.h"

#include <climits>
#include <gtest/gtest.h>

namespace {

TEST(Text, StrclrSetsThatManyBytesToZero)
{
    char text[] = "abcdef";
    strclr(text, 3);
    EXPECT_EQ(std::string(text, 6), std::string("\0\0\0def", 6));
}

TEST(Text, StrclrWithASizeBelowOneWritesNothing)
{
    char text[] = "abc";
    for (int const size : {0, -1, INT_MIN}) {
        strclr(text, size);
        EXPECT_STREQ(text, "abc");
    }
    strclr(nullptr, 0);
}

TEST(Text, StrrposFindsTheLastOccurrence)
{
    char text[] = "a.b.c";
    EXPECT_EQ(strrpos(text, '.'), 3);
    EXPECT_EQ(strrpos(text, 'a'), 0);
    EXPECT_EQ(strrpos(text, 'c'), 4);
    EXPECT_EQ(strrpos(text, 'x'), -1);
    EXPECT_EQ(strrpos(text, '\0'), -1);
    char empty[] = "";
    EXPECT_EQ(strrpos(empty, 'a'), -1);
    EXPECT_EQ(strrpos(empty, '\0'), -1);
}

TEST(Text, FindDriveFindsWhatFollowsTheMarker)
{
    EXPECT_EQ(find_drive(1, "drive e:"), 6);
    EXPECT_EQ(find_drive(2, "drive e:"), 2);
    EXPECT_EQ(find_drive(3, "drive e:"), 7);
    EXPECT_EQ(find_drive(1, "e\" \"C:"), 4);
    EXPECT_EQ(find_drive(2, "r\tx"), 1) << "only blanks and quotes are skipped";
    EXPECT_EQ(find_drive(1, "ee"), 1);
    EXPECT_EQ(find_drive(3, "eee"), 2);
}

TEST(Text, FindDriveWithoutAMarkerOrAValueIsMinusOne)
{
    for (int const kind : {INT_MIN, -1, 0, 1, 2, 3, 4, INT_MAX}) {
        EXPECT_EQ(find_drive(kind, ""), -1) << kind;
        EXPECT_EQ(find_drive(kind, "xyz"), -1) << kind;
    }
    for (int const kind : {-1, 0, 4}) {
        EXPECT_EQ(find_drive(kind, "drive e:"), -1) << kind;
    }
    for (char const* const text : {"e", "e ", "e \"", "x e\" \" "}) {
        EXPECT_EQ(find_drive(1, text), -1) << text;
    }
    EXPECT_EQ(find_drive(3, "one e"), -1);
    EXPECT_EQ(find_drive(3, "one"), -1) << "the first one only counts";
}

TEST(Text, FindDriveKnowsLowerCaseMarkersOnly)
{
    EXPECT_EQ(find_drive(1, "DRIVE E"), -1);
    EXPECT_EQ(find_drive(2, "DRIVE E"), -1);
    EXPECT_EQ(find_drive(3, "DRIVE E E"), -1);
}

TEST(Text, FindDriveLeavesItsTextAlone)
{
    char const text[] = "Drive E e";
    EXPECT_EQ(find_drive(1, text), 6);
    EXPECT_STREQ(text, "Drive E e");
}

TEST(Text, TolowerLeavesItsTextAlone)
{
    char text[] = "Some TEXT";
    tolower(text);
    EXPECT_STREQ(text, "Some TEXT");
}

TEST(Text, ToupperChangesItsTextAndReturnsACopy)
{
    char text[] = "rock_n.Tga 12";
    EXPECT_EQ(toupper(text), "ROCK_N.TGA 12");
    EXPECT_STREQ(text, "ROCK_N.TGA 12");
    char empty[] = "";
    EXPECT_EQ(toupper(empty), "");
}

TEST(Text, ToupperLeavesBytesThatAreNoAsciiLettersAlone)
{
    char text[] = "stra\xc3\x9f"
                  "e \xc3\xa4\x80\xff";
    EXPECT_EQ(toupper(text), "STRA\xc3\x9f"
                             "E \xc3\xa4\x80\xff");
}

} // namespace
