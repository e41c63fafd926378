// SPDX-License-Identifier: MIT
#include "toolkit/base/utf8.h"

#include "toolkit/base/text.h"

#include <gtest/gtest.h>

namespace umbrixlib::test {
namespace {

using toolkit::code_point;
using toolkit::has_control_characters;
using toolkit::is_unseen;
using toolkit::is_utf8;
using toolkit::lower_case;
using toolkit::printable;
using toolkit::printable_lines;
using toolkit::utf8_length;

TEST(Text, InLowerCaseKeepsAllButTheLettersAToZ)
{
    EXPECT_EQ(lower_case("AZaz_09@[\xC3\x84"), "azaz_09@[\xC3\x84"); // the capital A with dots stays
}

TEST(Utf8, HasOneToFourBytesACharacter)
{
    EXPECT_EQ(utf8_length(""), 0U);
    EXPECT_EQ(utf8_length("a"), 1U);
    EXPECT_EQ(utf8_length("\xC2\x80"), 2U);         // U+0080
    EXPECT_EQ(utf8_length("\xDF\xBF"), 2U);         // U+07FF
    EXPECT_EQ(utf8_length("\xE0\xA0\x80"), 3U);     // U+0800
    EXPECT_EQ(utf8_length("\xEF\xBF\xBF"), 3U);     // U+FFFF
    EXPECT_EQ(utf8_length("\xF0\x90\x80\x80"), 4U); // U+10000
    EXPECT_EQ(utf8_length("\xF4\x8F\xBF\xBF"), 4U); // U+10FFFF
}

TEST(Utf8, IsNoneOfTheseBytes)
{
    EXPECT_EQ(utf8_length("\x80"), 0U);             // a later byte first
    EXPECT_EQ(utf8_length("\xC1\xBF"), 0U);         // U+007F in two bytes
    EXPECT_EQ(utf8_length("\xE0\x9F\xBF"), 0U);     // U+07FF in three
    EXPECT_EQ(utf8_length("\xF0\x8F\xBF\xBF"), 0U); // U+FFFF in four
    EXPECT_EQ(utf8_length("\xED\xA0\x80"), 0U);     // U+D800, a surrogate
    EXPECT_EQ(utf8_length("\xF4\x90\x80\x80"), 0U); // U+110000
    EXPECT_EQ(utf8_length("\xF5\x80\x80\x80"), 0U);
    EXPECT_EQ(utf8_length("\xE2\x82"), 0U);     // cut off
    EXPECT_EQ(utf8_length("\xE2\x82\x41"), 0U); // followed by a letter
    EXPECT_TRUE(is_utf8("a\xE2\x82\xAC"));
    EXPECT_FALSE(is_utf8("a\xE2\x82"));
}

TEST(Utf8, KnowsControlCharacters)
{
    for (char const* text : {"\x01", "a\n", "\x7F", "a\xC2\x80", "\xC2\x9F"}) {
        EXPECT_TRUE(has_control_characters(text)) << printable(text);
    }
    for (char const* text : {"", "a b", "\xC2\xA0", "\xC3\x84", "\xFF\xFE"}) {
        EXPECT_FALSE(has_control_characters(text)) << printable(text);
    }
}

TEST(Utf8, ShowsWhatControlsATerminalAsNumbers)
{
    EXPECT_EQ(printable("a\x1B[2J\n"), "a\\x1B[2J\\x0A");
    EXPECT_EQ(printable("\xC2\x9B"
                        "1m"),
              "\\u009B1m");
    EXPECT_EQ(printable("\xFF\xC3"), "\\xFF\\xC3");
    EXPECT_EQ(printable("\xC3\x84"), "\xC3\x84");
    EXPECT_EQ(printable("a\x7F"), "a\\x7F");
    EXPECT_EQ(printable_lines("a\tb\nc\r\n"), "a\\x09b\nc\\x0D\n");
    EXPECT_EQ(printable_lines("a\nb"), "a\nb");
}

TEST(Utf8, ShowsWhatIsNotSeenAsNumbers)
{
    EXPECT_EQ(printable("rock\u202Egnp.exe"), "rock\\u202Egnp.exe");
    EXPECT_EQ(printable("a\u200Bb\U000E0041"), "a\\u200Bb\\U000E0041");
    EXPECT_EQ(printable_lines("a\u2028b\n"), "a\\u2028b\n");
    for (char32_t const code :
         {U'\u00AD', U'\u061C', U'\u200B', U'\u200C', U'\u200D', U'\u200E', U'\u200F', U'\u202A', U'\u202E',
          U'\u2060', U'\u2066', U'\u2069', U'\u2029', U'\uFEFF', U'\uFE0F', U'\uFFF9', U'\U0001D173'}) {
        EXPECT_TRUE(is_unseen(code)) << std::hex << static_cast<unsigned>(code);
    }
    for (char32_t const code : {U'a', U'\u00A0', U'\u00E4', U'\u0301', U'\u05D0', U'\u0627', U'\u2027',
                                U'\u202F', U'\u3042', U'\uFFFD', U'\U0001F642'}) {
        EXPECT_FALSE(is_unseen(code)) << std::hex << static_cast<unsigned>(code);
    }
}

TEST(Utf8, TellsTheNumberOfACharacter)
{
    EXPECT_EQ(code_point("a\u00E4"), U'a');
    EXPECT_EQ(code_point("\u00E4a"), U'\u00E4');
    EXPECT_EQ(code_point("\u20AC"), U'\u20AC');
    EXPECT_EQ(code_point("\U0001F642"), U'\U0001F642');
    EXPECT_EQ(code_point("\U0010FFFF"), U'\U0010FFFF');
}

} // namespace
} // namespace umbrixlib::test
