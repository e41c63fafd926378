// SPDX-License-Identifier: MIT
#include "toolkit/base/json_text.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>

namespace umbrixlib::test {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;
using toolkit::from_json_text;
using toolkit::to_json_text;
using toolkit::Unseen;

TEST(JsonText, IsThatOfTheLibraryForTextAndNumbers)
{
    ordered_json const value{{"text", "a\"\\/\b\f\n\r\t\x01 \x7F\u00E4\u20AC\U0001F642"},
                             {"numbers", {0, -1, 18446744073709551615U, 0.1, 1e300, 127.619}},
                             {"nothing", nullptr},
                             {"none", std::numeric_limits<double>::quiet_NaN()},
                             {"empty", {{"array", json::array()}, {"object", json::object()}}},
                             {"nested", {{{"yes", true}}, {{"no", false}}, {1, {2, "3"}}}}};
    EXPECT_EQ(to_json_text(value), value.dump());
    EXPECT_EQ(to_json_text(value, 2), value.dump(2));
    EXPECT_EQ(to_json_text(json{{"b", 1}, {"a", 2}}), R"({"a":2,"b":1})");
}

TEST(JsonText, TellsBytesThatAreNoUtf8AsLoneSurrogates)
{
    EXPECT_EQ(to_json_text("a\xFF\xC3\u00E4"), "\"a\\udcff\\udcc3\u00E4\"");
    EXPECT_EQ(to_json_text(ordered_json{{"\x80", 1}}), R"({"\udc80":1})");
    EXPECT_EQ(to_json_text("\xED\xB2\x80"), R"("\udced\udcb2\udc80")"); // a surrogate in three bytes
}

TEST(JsonText, TellsWhatIsNotSeenAsNumbersForATerminal)
{
    std::string const name = "a\u202E\u009B\x7F\U000E0041\xFF\u00E4";
    EXPECT_EQ(to_json_text(name, -1, Unseen::kAsNumbers),
              "\"a\\u202e\\u009b\\u007f\\udb40\\udc41\\udcff\u00E4\"");
    EXPECT_EQ(from_json_text(to_json_text(name, -1, Unseen::kAsNumbers)), name);
}

/// Any bytes, and text that looks like what stands for them.
std::vector<std::string> names()
{
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        all += static_cast<char>(byte);
    }
    return {all,
            {all.rbegin(), all.rend()},
            "\\udc80 \\\\udc80 \\u0000",
            std::string("\0\0\u0080\0\x80\0", 7),
            "\U0010FFFF\xED\xB2\x80\U0001F642\x80",
            "caf\xE9"};
}

TEST(JsonText, BringsEveryNameBack)
{
    for (std::string const& name : names()) {
        for (Unseen const unseen : {Unseen::kAsTheyAre, Unseen::kAsNumbers}) {
            std::string const text = to_json_text(ordered_json{{"name", {name}}}, -1, unseen);
            EXPECT_EQ(from_json_text(text).at("name").at(0), name) << text;
        }
    }
}

TEST(JsonText, TakesPairsOfSurrogatesForOneCharacter)
{
    EXPECT_EQ(from_json_text(R"("\ud83d\ude42\udb40\udc80")"), "\U0001F642\U000E0080");
    for (char const* text : {"", "{", "\"\\udc80", "\"\\ud83d\"", "\"\\ud83d\\udc", "\"\\udc7f\"", "\"\\"}) {
        EXPECT_TRUE(from_json_text(text).is_discarded()) << text;
    }
}

/// The form is that of Python, which scripts use.
TEST(JsonText, IsReadByPythonAsNamesOfFiles)
{
    if (std::system("python3 -c '' 2> /dev/null") != 0) {
        GTEST_SKIP() << "there is no python3";
    }
    std::FILE* const python =
        popen("python3 -X utf8 -c 'import json, os, sys\n"
              "lines = sys.stdin.readlines()\n"
              "for text, expected in zip(lines[::2], lines[1::2], strict=True):\n"
              "    assert os.fsencode(json.loads(text)) == bytes.fromhex(expected), text\n"
              "assert len(lines) == 12'",
              "w");
    ASSERT_NE(python, nullptr);
    for (std::string const& name : names()) {
        std::fprintf(python, "%s\n", to_json_text(name, -1, Unseen::kAsNumbers).c_str());
        for (char const byte : name) {
            std::fprintf(python, "%02x", static_cast<unsigned char>(byte));
        }
        std::fprintf(python, "\n");
    }
    EXPECT_EQ(pclose(python), 0);
}

} // namespace
} // namespace umbrixlib::test
