// SPDX-License-Identifier: MIT
#include "boundary/message_box.h"

#include <gtest/gtest.h>
#include <string>

namespace {

std::string received;

void receive(char const* text, char const* title)
{
    received = std::string(title) + "|" + text;
}

TEST(MessageBox, GoesToTheRegisteredHandler)
{
    EXPECT_EQ(set_message_handler(&receive), nullptr);
    umbrixlib::detail::show_error_box("two\n lines");
    EXPECT_EQ(received, "Error|two\n lines");
    EXPECT_EQ(set_message_handler(nullptr), &receive);
}

TEST(MessageBox, IsOneLineOnStandardErrorByDefault)
{
    testing::internal::CaptureStderr();
    umbrixlib::detail::show_error_box("two\n lines");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: two  lines\n");
}

} // namespace
