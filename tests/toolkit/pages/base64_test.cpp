// SPDX-License-Identifier: MIT
/// Bytes in letters.
#include "toolkit/pages/base64.h"

#include <gtest/gtest.h>
#include <vector>

namespace umbrixlib::test {
namespace {

std::string in_letters(std::string const& text)
{
    return toolkit::base64(std::vector<std::uint8_t>(text.begin(), text.end()));
}

TEST(Base64, IsThatOfTheStandardsExamples)
{
    EXPECT_EQ(in_letters(""), "");
    EXPECT_EQ(in_letters("f"), "Zg==");
    EXPECT_EQ(in_letters("fo"), "Zm8=");
    EXPECT_EQ(in_letters("foo"), "Zm9v");
    EXPECT_EQ(in_letters("foob"), "Zm9vYg==");
    EXPECT_EQ(in_letters("fooba"), "Zm9vYmE=");
    EXPECT_EQ(in_letters("foobar"), "Zm9vYmFy");
    EXPECT_EQ(in_letters("\xff\xfe\xfb"), "//77");
}

} // namespace
} // namespace umbrixlib::test
