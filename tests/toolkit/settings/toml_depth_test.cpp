// SPDX-License-Identifier: MIT
#include "toolkit/settings/toml_depth.h"

#include "toolkit/base/failure.h"
#include "toolkit/settings/preset.h"

#include <fstream>
#include <gtest/gtest.h>
#include <string>

#include "temporary_folder.h"

namespace umbrixlib::test {
namespace {

using toolkit::line_nested_deeper;

std::string repeated(std::string const& piece, std::size_t times)
{
    std::string text;
    for (std::size_t i = 0; i < times; ++i) {
        text += piece;
    }
    return text;
}

TEST(TomlDepth, CountsPartsOfKeysAndOpenBrackets)
{
    EXPECT_EQ(line_nested_deeper("a.b.c = 1\n[d.e.f]\nx = [[[1.5, 2.5, 3.5]]]\n", 3), std::nullopt);
    EXPECT_EQ(line_nested_deeper("a = 1\nb.c.d.e = 1\n", 3), 2U);
    EXPECT_EQ(line_nested_deeper("a = 1\n\n[b.'c'. \"d\" .e]\n", 3), 3U);
    EXPECT_EQ(line_nested_deeper("a = [[\n[\n[]]]]", 3), 3U);
    EXPECT_EQ(line_nested_deeper("a = {b = {c = {d = {}}}}", 3), 1U);
    EXPECT_EQ(line_nested_deeper(repeated("[]{}a.b\n", 1000), 3), std::nullopt);
}

TEST(TomlDepth, TakesNoTextForKeys)
{
    for (std::string const deep : {"a.b.c.d.e", "[[[[[", "{{{{{"}) {
        EXPECT_EQ(line_nested_deeper("x = 1 # " + deep + "\n", 3), std::nullopt);
        EXPECT_EQ(line_nested_deeper("x = '" + deep + "\\'\n", 3), std::nullopt);
        EXPECT_EQ(line_nested_deeper("x = \"" + deep + "\\\"" + deep + "\"\n", 3), std::nullopt);
        EXPECT_EQ(line_nested_deeper("x = '''\n'" + deep + "''\n" + deep + "'''''\ny = 1\n", 3),
                  std::nullopt);
        EXPECT_EQ(line_nested_deeper("x = \"\"\"\n" + deep + "\\\"\"\"" + deep + "\"\"\"", 3), std::nullopt);
        EXPECT_EQ(line_nested_deeper("x = ''''''\n" + deep, 3), 2U);
        EXPECT_EQ(line_nested_deeper("x = \"open\n" + deep, 3), 2U);
    }
}

TEST(TomlDepth, EndsAtAnyByte)
{
    std::string const text = "a.'b'=\"\\\"\"\nc=\"\"\"\\\"\"\"\"\nd=''''''";
    for (std::size_t size = 0; size <= text.size(); ++size) {
        EXPECT_EQ(line_nested_deeper(text.substr(0, size), 3), std::nullopt) << size;
    }
}

TEST(TomlDepth, BoundsAPreset)
{
    TemporaryFolder const folder;
    std::string const file = (folder / "deep.toml").string();
    for (std::string const& content :
         {"a" + repeated(".a", 32000) + " = 1\n", "[a" + repeated(".a", 32000) + "]\n",
          "x = " + repeated("[", 32000), "x = " + repeated("{a.a.a.a=", 8000)}) {
        std::ofstream(file) << content;
        try {
            toolkit::read_preset(file);
            FAIL() << "it is no preset";
        } catch (toolkit::Failure const& failure) {
            EXPECT_EQ(failure.subject, file + ": line 1");
            EXPECT_STREQ(failure.what(), "it nests more than 16 levels deep");
        }
    }
}

} // namespace
} // namespace umbrixlib::test
