// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/png/png_filters.h"
#include "toolkit/pictures/formats/png/png_unfilter.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace umbrixlib::toolkit {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// What the filter takes from a byte, as the description of PNG has it.
int guess(PngFilter filter, int left, int above, int above_left)
{
    int const sum = left + above - above_left;
    int const to_left = std::abs(sum - left);
    int const to_above = std::abs(sum - above);
    int const to_above_left = std::abs(sum - above_left);
    switch (filter) {
    case PngFilter::kSub:
        return left;
    case PngFilter::kUp:
        return above;
    case PngFilter::kAverage:
        return (left + above) / 2;
    case PngFilter::kPaeth:
        return to_left <= to_above && to_left <= to_above_left ? left
               : to_above <= to_above_left                     ? above
                                                               : above_left;
    default:
        return 0;
    }
}

class PngFilters : public testing::TestWithParam<PngFilter> {};

TEST_P(PngFilters, GiveWhatAPlainFormGivesAndAreUndone)
{
    std::mt19937 random(1);
    for (std::size_t const step : {1U, 2U, 3U, 4U, 6U, 8U}) {
        for (std::size_t const size : {step, 7 * step, 33 * step, 1000 * step}) {
            Bytes row(size);
            Bytes above(size);
            for (std::size_t i = 0; i < size; ++i) {
                row[i] = static_cast<std::uint8_t>(random());
                above[i] = static_cast<std::uint8_t>(random() % 3 == 0 ? row[i] + random() % 5 : random());
            }
            Bytes wanted(size);
            for (std::size_t i = 0; i < size; ++i) {
                int const left = i < step ? 0 : row[i - step];
                int const above_left = i < step ? 0 : above[i - step];
                wanted[i] = static_cast<std::uint8_t>(row[i] - guess(GetParam(), left, above[i], above_left));
            }
            Bytes made(size);
            filter_row(GetParam(), row, above.data(), step, made.data());
            EXPECT_EQ(made, wanted) << step << ' ' << size;

            made.resize(size + kBehindPngRow, 99);
            above.resize(size + kBehindPngRow, 77);
            unfilter_row(GetParam(), {made.data(), size}, above.data(), step);
            row.resize(size + kBehindPngRow, 99);
            EXPECT_EQ(made, row) << step << ' ' << size;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Each, PngFilters,
                         testing::Values(PngFilter::kNone, PngFilter::kSub, PngFilter::kUp,
                                         PngFilter::kAverage, PngFilter::kPaeth));

} // namespace
} // namespace umbrixlib::toolkit
