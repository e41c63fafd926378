// SPDX-License-Identifier: MIT
#include "toolkit/base/suggestion.h"

#include <gtest/gtest.h>

namespace umbrixlib::test {
namespace {

using toolkit::meant_by;

std::vector<std::string_view> const kWords{"rays", "radius", "alpha_limit"};

TEST(Suggestion, IsTheWordWithFewOtherLetters)
{
    EXPECT_EQ(meant_by("ray", kWords), "rays");   // one letter put in
    EXPECT_EQ(meant_by("rayss", kWords), "rays"); // one taken out
    EXPECT_EQ(meant_by("raxs", kWords), "rays");  // one changed
    EXPECT_EQ(meant_by("radios", kWords), "radius");
}

TEST(Suggestion, TakesDashesForUnderscoresAndCapitalsForSmallLetters)
{
    EXPECT_EQ(meant_by("alpha-limit", kWords), "alpha_limit");
    EXPECT_EQ(meant_by("RAYS", kWords), "rays");
}

/// A word of n letters may differ in n / 3 + 1 of them.
TEST(Suggestion, IsNoneIfTooManyLettersDiffer)
{
    EXPECT_EQ(meant_by("rags", {"rays"}), "rays");
    EXPECT_EQ(meant_by("ragx", {"rays"}), "rays");
    EXPECT_EQ(meant_by("rgxx", {"rays"}), "");
    EXPECT_EQ(meant_by("", {"rays"}), "");
    EXPECT_EQ(meant_by("rays", {}), "");
}

TEST(Suggestion, IsTheFirstOfThoseAsNear)
{
    EXPECT_EQ(meant_by("a", {"ab", "ac"}), "ab");
    EXPECT_EQ(meant_by("ac", {"ab", "ac"}), "ac");
}

TEST(Suggestion, IsNoneForAWordOfMoreThan64Letters)
{
    std::string const longest(64, 'a');
    std::string const longer(65, 'a');
    EXPECT_EQ(meant_by(longest, {longest}), longest);
    EXPECT_EQ(meant_by(longer, {longer}), "");
}

} // namespace
} // namespace umbrixlib::test
