// SPDX-License-Identifier: MIT
#include "toolkit/pictures/analysis/picture_difference.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace umbrixlib::toolkit {
namespace {

template <typename Sample>
Picture two_texels(SampleType type, std::vector<Sample> const& samples)
{
    Picture picture = make_picture(2, 1, static_cast<int>(samples.size()) / 2, type);
    std::copy(samples.begin(), samples.end(), picture.samples<Sample>().begin());
    return picture;
}

TEST(PictureDifference, IsTheLargestOfEachChannelRoundedUp)
{
    using Small = std::vector<std::uint8_t>;
    EXPECT_EQ(largest_difference(two_texels(SampleType::kUint8, Small{9, 0, 200, 7, 255, 200}),
                                 two_texels(SampleType::kUint8, Small{8, 0, 205, 10, 0, 202})),
              (std::vector<int>{3, 255, 5}));
    using Large = std::vector<std::uint16_t>;
    EXPECT_EQ(largest_difference(two_texels(SampleType::kUint16, Large{0, 65535}),
                                 two_texels(SampleType::kUint16, Large{1, 65535 - 257})),
              (std::vector<int>{1}));
    EXPECT_EQ(largest_difference(two_texels(SampleType::kUint16, Large{0, 0}),
                                 two_texels(SampleType::kUint16, Large{0, 258})),
              (std::vector<int>{2}));
}

TEST(PictureDifference, OfFloatsIsAtMostThatOfBlackAndWhite)
{
    using Real = std::vector<float>;
    EXPECT_EQ(largest_difference(two_texels(SampleType::kFloat, Real{0, 0}),
                                 two_texels(SampleType::kFloat, Real{0.5f, 1e30f})),
              (std::vector<int>{255}));
}

TEST(PictureDifference, IsToldByTheNamesOfTheChannels)
{
    EXPECT_EQ(in_words({3, 0, 12, 1}), "red 3, green 0, blue 12, alpha 1");
    EXPECT_EQ(in_words({3}), "red 3");
}

} // namespace
} // namespace umbrixlib::toolkit
