// SPDX-License-Identifier: MIT
#include "views/shown.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>

namespace umbrix_desktop {
namespace {

/// Maps of one value for a source of 8 x 4 texels.
Made made(Area area, int width, int height, std::uint8_t value)
{
    auto picture = std::make_shared<toolkit::Picture>(toolkit::make_picture(width, height, 1));
    std::fill(picture->bytes.begin(), picture->bytes.end(), value);
    Made made;
    made.width = 8;
    made.height = 4;
    made.area = area;
    made.pictures[static_cast<std::size_t>(Show::kMap)] = picture;
    return made;
}

constexpr Area kAll{0, 0, 8, 4};

TEST(Shown, KeepsTheWholeBelowANewerPreview)
{
    Shown shown;
    shown.take(made(kAll, 8, 4, 51));
    EXPECT_EQ(shown.size(), QSize(8, 4));
    EXPECT_FALSE(shown.preview(Show::kMap).picture);
    shown.take(made({2, 1, 4, 2}, 4, 2, 102));
    EXPECT_TRUE(shown.whole(Show::kMap).picture);
    EXPECT_EQ(shown.words_at(Show::kMap, {2, 1}), "height 0.40000");
    EXPECT_EQ(shown.words_at(Show::kMap, {1, 1}), "height 0.20000");
    shown.take(made(kAll, 8, 4, 153));
    EXPECT_FALSE(shown.preview(Show::kMap).picture);
    EXPECT_EQ(shown.words_at(Show::kMap, {2, 1}), "height 0.60000");
}

TEST(Shown, HasNoSamplesOfASmallerPreview)
{
    Shown shown;
    shown.take(made(kAll, 4, 2, 51));
    EXPECT_TRUE(shown.has(Show::kMap));
    EXPECT_EQ(shown.words_at(Show::kMap, {0, 0}), "");
    EXPECT_FALSE(shown.has(Show::kNormals));
}

TEST(Shown, KeepsItsPicturesWhenNoneCouldBeMade)
{
    Shown shown;
    shown.take(made(kAll, 8, 4, 51));
    Made failed;
    failed.failure = "The file is gone.";
    shown.take(failed);
    EXPECT_TRUE(shown.has(Show::kMap));
}

TEST(Shown, ForgetsPicturesOfAnotherSize)
{
    Shown shown;
    shown.take(made(kAll, 8, 4, 51));
    Made other = made({0, 0, 2, 2}, 2, 2, 1);
    other.width = other.height = 2;
    other.pictures[static_cast<std::size_t>(Show::kMap)].swap(
        other.pictures[static_cast<std::size_t>(Show::kNormals)]);
    shown.take(other);
    EXPECT_EQ(shown.size(), QSize(2, 2));
    EXPECT_FALSE(shown.has(Show::kMap));
    EXPECT_TRUE(shown.has(Show::kNormals));
    shown.drop(Show::kNormals);
    EXPECT_FALSE(shown.has(Show::kNormals));
}

} // namespace
} // namespace umbrix_desktop
