// SPDX-License-Identifier: MIT
#include "views/texel_image.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace umbrix_desktop {
namespace {

using toolkit::make_picture;
using toolkit::Picture;
using toolkit::PictureKind;
using umbrixlib::SampleType;

constexpr QRgb kBeside = qRgb(1, 2, 3);

/// A picture of bytes whose rows are given from the top one on.
Picture bytes_picture(int width, int height, int channels, std::vector<std::vector<std::uint8_t>> const& rows)
{
    Picture picture = make_picture(width, height, channels);
    auto to = picture.bytes.begin();
    for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
        to = std::copy(row->begin(), row->end(), to);
    }
    return picture;
}

/// @p picture as a view of its whole has it in an area.
QImage drawn(Picture const& picture, QSize area, View const& view, Channel channel = Channel::kAll)
{
    QImage image(area, QImage::Format_RGB32);
    image.fill(kBeside);
    draw_texels(image, picture, {0, 0, picture.width, picture.height},
                viewport_of(view, area, {picture.width, picture.height}), channel);
    return image;
}

std::vector<int> reds(QImage const& image)
{
    std::vector<int> found;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            found.push_back(qRed(image.pixel(x, y)));
        }
    }
    return found;
}

TEST(TexelImage, HasTheTopRowOnTop)
{
    Picture const picture = bytes_picture(2, 2, 1, {{10, 20}, {30, 40}});
    EXPECT_EQ(reds(drawn(picture, {2, 2}, {})), (std::vector{10, 20, 30, 40}));
}

TEST(TexelImage, RepeatsTexelsWhenZoomedIn)
{
    Picture const picture = bytes_picture(2, 1, 1, {{10, 20}});
    EXPECT_EQ(reds(drawn(picture, {4, 2}, {})), (std::vector{10, 10, 20, 20, 10, 10, 20, 20}));
}

TEST(TexelImage, TakesTheMeanOfTexelsWhenZoomedOut)
{
    Picture const picture = bytes_picture(4, 2, 1, {{0, 10, 100, 101}, {20, 30, 102, 103}});
    EXPECT_EQ(reds(drawn(picture, {2, 1}, {})), (std::vector{15, 102})); // 101.5 is rounded up
}

TEST(TexelImage, LeavesWhatIsBeside)
{
    Picture const picture = bytes_picture(1, 1, 1, {{200}});
    View view;
    view.zoom = 1;
    EXPECT_EQ(reds(drawn(picture, {3, 1}, view)), (std::vector{1, 200, 1}));
}

TEST(TexelImage, TilesAPicture)
{
    Picture const picture = bytes_picture(2, 1, 1, {{10, 20}});
    View view;
    view.tiles = 2;
    view.zoom = 1;
    EXPECT_EQ(reds(drawn(picture, {4, 2}, view)), (std::vector{10, 20, 10, 20, 10, 20, 10, 20}));
}

TEST(TexelImage, ShowsOneChannelAsGrey)
{
    Picture const picture = bytes_picture(1, 1, 4, {{10, 20, 30, 40}});
    auto const pixel = [&](Channel channel) { return drawn(picture, {1, 1}, {}, channel).pixel(0, 0); };
    EXPECT_EQ(pixel(Channel::kAll), qRgb(10, 20, 30));
    EXPECT_EQ(pixel(Channel::kRed), qRgb(10, 10, 10));
    EXPECT_EQ(pixel(Channel::kGreen), qRgb(20, 20, 20));
    EXPECT_EQ(pixel(Channel::kBlue), qRgb(30, 30, 30));
    EXPECT_EQ(pixel(Channel::kAlpha), qRgb(40, 40, 40));
}

TEST(TexelImage, TakesGreyForEachColourAndAMissingAlphaForFull)
{
    Picture const picture = bytes_picture(1, 1, 1, {{70}});
    EXPECT_EQ(drawn(picture, {1, 1}, {}, Channel::kBlue).pixel(0, 0), qRgb(70, 70, 70));
    EXPECT_EQ(drawn(picture, {1, 1}, {}, Channel::kAlpha).pixel(0, 0), qRgb(255, 255, 255));
}

TEST(TexelImage, ShowsEachTypeOfSamples)
{
    Picture words = make_picture(3, 1, 1, SampleType::kUint16);
    std::ranges::copy(std::vector<std::uint16_t>{0, 32768, 65535}, words.samples<std::uint16_t>().begin());
    EXPECT_EQ(reds(drawn(words, {3, 1}, {})), (std::vector{0, 128, 255}));
    Picture floats = make_picture(4, 1, 1, SampleType::kFloat);
    std::ranges::copy(std::vector{-1.0f, 0.5f, 1.0f, 7.0f}, floats.samples<float>().begin());
    EXPECT_EQ(reds(drawn(floats, {4, 1}, {})), (std::vector{0, 128, 255, 255}));
    Picture halves = make_picture(2, 1, 1, SampleType::kHalf);
    halves.samples<toolkit::Half>()[0] = toolkit::to_half(0.25f);
    halves.samples<toolkit::Half>()[1] = toolkit::to_half(1.0f);
    EXPECT_EQ(reds(drawn(halves, {2, 1}, {})), (std::vector{64, 255}));
}

TEST(TexelImage, ShowsVectorsAroundTheMiddle)
{
    Picture normal = make_picture(1, 1, 3, SampleType::kFloat);
    normal.kind = PictureKind::kNormals;
    std::ranges::copy(std::vector{-1.0f, 0.0f, 1.0f}, normal.samples<float>().begin());
    EXPECT_EQ(drawn(normal, {1, 1}, {}).pixel(0, 0), qRgb(0, 128, 255));
}

TEST(TexelImage, DrawsAPartWhereItBelongs)
{
    QImage image(4, 4, QImage::Format_RGB32);
    image.fill(kBeside);
    Picture const part = bytes_picture(1, 2, 1, {{10}, {20}});
    draw_texels(image, part, {2, 1, 2, 2}, viewport_of({}, {4, 4}, {4, 4}), Channel::kAll);
    EXPECT_EQ(reds(image), (std::vector{1, 1, 1, 1, 1, 1, 10, 10, 1, 1, 20, 20, 1, 1, 1, 1}));
}

TEST(TexelImage, OfTwoIsSplitAtAColumn)
{
    QImage left(3, 2, QImage::Format_RGB32);
    QImage right(3, 2, QImage::Format_RGB32);
    left.fill(qRgb(9, 9, 9));
    right.fill(qRgb(5, 5, 5));
    EXPECT_EQ(reds(split_at(left, right, 1)), (std::vector{9, 5, 5, 9, 5, 5}));
    EXPECT_EQ(split_at(left, right, 0), right);
    EXPECT_EQ(split_at(left, right, 7), left);
}

TEST(TexelImage, OfTwoTellsHowFarTheyAreApart)
{
    QImage left(1, 1, QImage::Format_RGB32);
    QImage right(1, 1, QImage::Format_RGB32);
    left.fill(qRgb(10, 200, 30));
    right.fill(qRgb(15, 100, 30));
    EXPECT_EQ(difference_of(left, right).pixel(0, 0), qRgb(5, 100, 0));
    EXPECT_EQ(difference_of(right, left).pixel(0, 0), qRgb(5, 100, 0));
}

TEST(TexelWords, AreInThePicturesOwnNumbers)
{
    Picture heights = make_picture(1, 2, 1, SampleType::kUint16);
    heights.samples<std::uint16_t>()[0] = 13107; // the bottom row
    EXPECT_EQ(texel_words(heights, 0, 1), "height 0.20000");
    EXPECT_EQ(texel_words(heights, 0, 0), "height 0.00000");

    Picture normals = bytes_picture(1, 1, 4, {{255, 0, 51, 255}});
    normals.kind = PictureKind::kNormals;
    EXPECT_EQ(texel_words(normals, 0, 0), "normal 1.000, -1.000, -0.600, alpha 1.0000");

    Picture const colours = bytes_picture(1, 1, 3, {{12, 34, 56}});
    EXPECT_EQ(texel_words(colours, 0, 0), "12, 34, 56");

    Picture light = make_picture(1, 1, 3, SampleType::kFloat);
    std::ranges::copy(std::vector{0.5f, 1.25f, 0.125f}, light.samples<float>().begin());
    EXPECT_EQ(texel_words(light, 0, 0), "0.5, 1.25, 0.125");
}

} // namespace
} // namespace umbrix_desktop
