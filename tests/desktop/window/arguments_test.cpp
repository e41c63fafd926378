// SPDX-License-Identifier: MIT
#include "arguments.h"

#include <gtest/gtest.h>

namespace {

using umbrix_desktop::parse_arguments;

TEST(DesktopArguments, NameAFileOrNone)
{
    EXPECT_EQ(parse_arguments({}).file, "");
    EXPECT_EQ(parse_arguments({"brick.png"}).file, "brick.png");
    EXPECT_EQ(parse_arguments({"--", "--help"}).file, "--help");
    EXPECT_EQ(parse_arguments({"--", "--help"}).fault, "");
}

TEST(DesktopArguments, AskForAScreenshotOfAFile)
{
    auto const arguments = parse_arguments({"--screenshot", "window.png", "brick.png"});
    EXPECT_EQ(arguments.screenshot, "window.png");
    EXPECT_EQ(arguments.file, "brick.png");
    EXPECT_EQ(arguments.fault, "");
}

TEST(DesktopArguments, TellWhatIsWrongWithThem)
{
    EXPECT_EQ(parse_arguments({"--screenshot"}).fault, "--screenshot needs a file to write.");
    EXPECT_EQ(parse_arguments({"--screenshot", "a.png"}).fault,
              "--screenshot needs a picture or a project to show.");
    EXPECT_EQ(parse_arguments({"--fast"}).fault, "There is no option --fast.");
    EXPECT_EQ(parse_arguments({"a.png", "b.png"}).fault,
              "One file can be opened, and b.png is a second one.");
}

} // namespace
